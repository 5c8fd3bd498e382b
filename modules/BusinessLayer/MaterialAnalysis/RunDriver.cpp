// How a run goes from task to task and from material to material.

#include <cstring>

#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"
#include "modules/BusinessLayer/MaterialAnalysis/NestedStart.h"
#include "modules/BusinessLayer/MaterialAnalysis/Progress.h"
#include "modules/BusinessLayer/MaterialAnalysis/Selection.h"

namespace KOR {

namespace {

/// What currentKind answers where there is none; no kind of analysis has this code.
constexpr std::int32_t noKind = 0;

template <typename Element>
bool hasIndex(const std::vector<Element>& elements, std::int32_t index) {
    return index >= 0 && static_cast<std::size_t>(index) < elements.size();
}

}  // namespace

Status KorMaterialAnalysis::start() {
    cancelled.exchange(0);
    NestedStart::forgetFinishes(this);
    moveToMaterial(0);
    currentTaskIndex = -1;
    scenceRanges.clear();
    keyFramesOfScences.clear();
    scenceScores.clear();
    analysisResults.clear();
    return onTaskFinished();
}

Status KorMaterialAnalysis::stop() {
    cancelled.exchange(1);
    // A task may report in its stop, and a listener release the component in there.
    const std::vector<Ref<IKorBaseTask>> toStop = tasks;
    for (const Ref<IKorBaseTask>& task : toStop)
        task->stop();
    return statusOk;
}

Status KorMaterialAnalysis::onTaskEvent(IDmBaseObj* /*sender*/, std::uint32_t category,
                                        std::uint32_t event, void* payload) {
    if (category != taskEventCategory) return statusOk;
    switch (event) {
        case taskEventProgress:
            forwardProgress(payload);
            break;
        case taskEventFinished:
            onTaskFinishedEvent();
            break;
        case taskEventFailed:
        case taskEventStopped:
            callBacks.notify(*this, event, payload);
            break;
        default:
            break;
    }
    return statusOk;
}

void KorMaterialAnalysis::onTaskFinishedEvent() {
    NestedStart* const around = NestedStart::innermost(this);
    if (around != nullptr && around->isBeyondLiteralLevels()) {
        around->rememberFinish();
        return;
    }
    onTaskFinished();
    // The step may have ended the component; then no finish can be taken any more.
    while (around != nullptr && around->takeFinish())
        onTaskFinished();
}

/// One step of the run: takes in what the finished task has found and starts the next one.
Status KorMaterialAnalysis::onTaskFinished() {
    if (cancelled.load() != 0) return statusFailed;
    const Status taken = currentTaskIndex < 0 ? statusOk : takeInFinishedTask();
    advanceToNextTask();
    const Status next = isBeyondLastMaterial() ? finishedAllAnalysis() : startCurrentTask();
    return next == statusFailed ? statusFailed : taken;
}

Status KorMaterialAnalysis::takeInFinishedTask() {
    IBsMediaAnalysisTask* const task = currentTask();
    Status status = statusFailed;
    switch (currentKind()) {
        case analysisKindFace:
            status = faceDetectFinished(task);
            break;
        case analysisKindKeyFrame:
            status = keyFrameDetectFinished(task);
            break;
        case analysisKindScence:
            status = scenceDetectFinished(task);
            break;
        case analysisKindEntropy:
            status = entropyCalculateFinished(task);
            break;
        case analysisKindScenceAndKeyFrame:
            status = scenceAndKeyframeDetectFinished(task);
            break;
        case analysisKindFaceAndEntropy:
            status = faceAndEntropyAnalysisFinished(task);
            break;
        default:  // Blur, whose results count for nothing, is a failure by contract.
            break;
    }
    if (isPhotoMaterial(currentMaterial())) return status;
    if (currentTaskIndex > 0 && currentTaskIndex == lastTaskIndex()) {
        if (rankScenceScores() == statusFailed) status = statusFailed;
        if (buildAnalysisResults() == statusFailed) status = statusFailed;
    }
    return status;
}

void KorMaterialAnalysis::advanceToNextTask() {
    if (currentTaskIndex < 0) {
        moveToMaterial(0);
        currentTaskIndex = 0;
    } else if (currentTaskIndex == lastTaskIndex()) {
        moveToMaterial(currentMaterialIndex + 1);
        currentTaskIndex = 0;
    } else {
        currentTaskIndex += 1;
        if (currentTaskIndex != 0) return;
    }
    selectMaterial();
}

/// Goes on to the first material from the current one on for which a task is to run. The others get
/// what is theirs on the way.
void KorMaterialAnalysis::selectMaterial() {
    while (IDmBaseMedia* const media = currentMaterial()) {
        if (isPhotoMaterial(media)) {
            if (selectPhotoTask()) return;
            continue;
        }
        if (isTooShortToAnalyse(mediaDuration(media), minNeedAnalysisDuartion)) {
            addDefaultResult(0);
        } else if (!restoreMaterialAnalysisResult(media)) {
            currentTaskIndex = 0;
            return;
        }
        moveToMaterial(currentMaterialIndex + 1);
    }
}

/// Gives the current photo its record and chooses its face task. False when none was chosen: the
/// run is then at the next material, or still at this one where the face task is the first of all,
/// which does not count as a choice.
bool KorMaterialAnalysis::selectPhotoTask() {
    addDefaultResult(1);
    const std::int32_t index = photoNeedAnalysis == 0 ? noTask : photoTaskIndex(analysisKinds);
    if (index == noTask) {
        moveToMaterial(currentMaterialIndex + 1);
        return false;
    }
    currentTaskIndex = index;
    return index != 0;
}

Status KorMaterialAnalysis::startCurrentTask() {
    if (cancelled.load() != 0) return statusFailed;
    IBsMediaAnalysisTask* const task = currentTask();
    switch (currentKind()) {
        case analysisKindFace:
            return startFaceDetect(task);
        case analysisKindBlur:
            return startBlurDetect(task);
        case analysisKindKeyFrame:
            return startKeyFrameDetect(task);
        case analysisKindScence:
            return startScenceDetect(task);
        case analysisKindEntropy:
            return startEntropyCalculate(task);
        case analysisKindScenceAndKeyFrame:
            return startScenceAndKeyframeDetect(task);
        case analysisKindFaceAndEntropy:
            return startFaceAndEntropyAnalysis(task);
        default:
            return statusFailed;
    }
}

void KorMaterialAnalysis::forwardProgress(const void* payload) {
    TaskEventPayload copy{};
    if (payload != nullptr) std::memcpy(&copy, payload, sizeof copy);
    copy.progress = overallProgressAt(copy.progress);
    callBacks.notify(*this, taskEventProgress, &copy);
}

std::int32_t KorMaterialAnalysis::overallProgressAt(std::int32_t taskPercent) const {
    RunPosition at{};
    at.stillMaterial = isPhotoMaterial(currentMaterial());
    for (std::size_t i = 0; i < materials.size(); ++i) {
        const auto duration = static_cast<double>(mediaDuration(materials[i].get()));
        const auto index = static_cast<std::int64_t>(i);
        at.durationOfAll += duration;
        if (index < currentMaterialIndex) at.durationBefore += duration;
        if (index == currentMaterialIndex) at.durationOfCurrent = duration;
    }
    at.taskIndex = currentTaskIndex;
    at.taskCount = tasks.size();
    at.scale = progressScale;
    return overallProgress(at, taskPercent);
}

void KorMaterialAnalysis::moveToMaterial(std::int32_t index) {
    currentMaterialIndex = index;
    NestedStart::moved(this, index);
}

bool KorMaterialAnalysis::isBeyondLastMaterial() const {
    return currentMaterialIndex >= static_cast<std::int64_t>(materials.size());
}

std::int32_t KorMaterialAnalysis::lastTaskIndex() const {
    return static_cast<std::int32_t>(tasks.size()) - 1;
}

std::int32_t KorMaterialAnalysis::currentKind() const {
    if (!hasIndex(analysisKinds, currentTaskIndex)) return noKind;
    return analysisKinds[static_cast<std::size_t>(currentTaskIndex)];
}

IDmBaseMedia* KorMaterialAnalysis::currentMaterial() const {
    if (!hasIndex(materials, currentMaterialIndex)) return nullptr;
    return materials[static_cast<std::size_t>(currentMaterialIndex)].get();
}

IBsMediaAnalysisTask* KorMaterialAnalysis::currentTask() const {
    if (!hasIndex(tasks, currentTaskIndex)) return nullptr;
    IKorBaseTask* const task = tasks[static_cast<std::size_t>(currentTaskIndex)].get();
    return static_cast<IBsMediaAnalysisTask*>(task->queryInterface("IBsMediaAnalysisTask"));
}

}  // namespace KOR
