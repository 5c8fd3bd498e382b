#include "host_kit/AnalysisTask.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host_kit/Source.h"
#include "host_kit/Workers.h"

namespace host_kit {
namespace {

constexpr std::uint32_t stateIdle = 0;
constexpr std::uint32_t stateRunning = 1;

constexpr KOR::SceneParameters defaultSceneParameters{
    .sensitivity = 1.0, .threshold = 3.0, .reserved = 0};

constexpr KOR::KeyFrameParameters defaultKeyFrameParameters{.maxPerScene = 6,
                                                            .secondsPerKeyFrame = 4,
                                                            .reserved = 0,
                                                            .candidatesPerKeyFrame = 4,
                                                            .marginFramesBegin = 2,
                                                            .marginFramesEnd = 2};

bool isAboveZero(double number) {
    return std::isfinite(number) && number > 0;
}

bool isInRange(const KOR::SceneParameters& parameters) {
    return isAboveZero(parameters.sensitivity) && isAboveZero(parameters.threshold);
}

bool isInRange(const KOR::KeyFrameParameters& parameters) {
    return parameters.maxPerScene >= 1 && parameters.secondsPerKeyFrame >= 1 &&
           parameters.candidatesPerKeyFrame >= 1 && parameters.marginFramesBegin >= 0 &&
           parameters.marginFramesEnd >= 0;
}

/// Copies the block into `parameters` where its values are in their range.
template <typename Parameters>
KOR::Status take(const void* block, std::optional<Parameters>& parameters) {
    Parameters values;
    std::memcpy(&values, block, sizeof(values));
    if (!isInRange(values)) return KOR::statusFailed;
    parameters = values;
    return KOR::statusOk;
}

/// Appends a copy of each element to `list`, which owns the copies.
template <typename Element>
KOR::Status appendCopies(const std::vector<Element>& elements, KOR::IKORVoidPtrList& list) {
    for (const Element& element : elements) {
        void* const copy = ::operator new(sizeof(Element));
        std::memcpy(copy, &element, sizeof(Element));
        if (list.append(copy) == KOR::statusOk) continue;
        ::operator delete(copy);
        return KOR::statusFailed;
    }
    return KOR::statusOk;
}

/// What the thread of a run does.
void run(TaskChannel& channel, Analysable* analysable, const AnalysisRequest& request,
         const std::stop_token& stop) {
    ProgressMeter progress([&](std::int32_t percent) { channel.progress(stop, percent); });
    std::shared_ptr<const AnalysisResults> results;
    try {
        if (analysable == nullptr)
            throw std::runtime_error("the task has no source that it can read");
        results =
            std::make_shared<const AnalysisResults>(analysable->analyse(request, stop, progress));
        progress.report(100);
        if (!stop.stop_requested()) analysable->noteAnalysed();
    } catch (const std::exception& failure) {
        // What fails because it was stopped says nothing about the footage.
        if (stop.stop_requested()) return;
        if (analysable != nullptr) analysable->noteFailure(failure.what());
        channel.fail(stop, failure.what());
    }
    channel.finish(stop, std::move(results));
}

}  // namespace

AnalysisTask::AnalysisTask(std::vector<std::int32_t> types)
    : types_(std::move(types)), channel_(std::make_shared<TaskChannel>(*this)) {}

AnalysisTask::~AnalysisTask() {
    channel_->close();
}

void* AnalysisTask::queryInterface(const char* name) {
    if (name == nullptr) return nullptr;
    const std::string_view wanted = name;
    if (wanted == "IDmBaseObj") return static_cast<KOR::IDmBaseObj*>(this);
    if (wanted == "IKorBaseTask") return static_cast<KOR::IKorBaseTask*>(this);
    if (wanted == "IBsMediaAnalysisTask") return static_cast<KOR::IBsMediaAnalysisTask*>(this);
    return nullptr;
}

std::uint32_t AnalysisTask::getTaskType() {
    return static_cast<std::uint32_t>(types_.front());
}

KOR::Status AnalysisTask::setTaskInfo(std::uint32_t first, std::uint32_t second,
                                      std::uint32_t third) {
    info_ = {first, second, third};
    return KOR::statusOk;
}

KOR::Status AnalysisTask::getTaskInfo(std::uint32_t* first, std::uint32_t* second,
                                      std::uint32_t* third) {
    if (first == nullptr || second == nullptr || third == nullptr) return KOR::statusFailed;
    *first = info_[0];
    *second = info_[1];
    *third = info_[2];
    return KOR::statusOk;
}

KOR::Status AnalysisTask::setTaskName(const char* name) {
    if (name == nullptr) return KOR::statusFailed;
    name_ = name;
    return KOR::statusOk;
}

KOR::Status AnalysisTask::addCallBack(KOR::IKorCallBack* callBack) {
    if (callBack != nullptr) channel_->addListener(callBack);
    return KOR::statusOk;
}

KOR::Status AnalysisTask::removeCallBack(KOR::IKorCallBack* callBack) {
    if (callBack == nullptr) return KOR::statusFailed;
    channel_->removeListener(callBack);
    return KOR::statusOk;
}

KOR::Status AnalysisTask::start() {
    // Once the thread runs, a listener may give back the last reference on this object.
    const std::shared_ptr<TaskChannel> channel = channel_;
    const std::shared_ptr<Analysable> analysable = preparation_.analysable;
    AnalysisRequest work = request();
    const std::optional<std::stop_source> source = channel->begin();
    if (!source) return KOR::statusFailed;
    try {
        if (analysable) analysable->noteAnalysis();
        Workers::instance().launch(
            *source, [channel, analysable, work = std::move(work), stop = source->get_token()] {
                run(*channel, analysable.get(), work, stop);
            });
    } catch (const std::exception&) {
        channel->abandon();
        return KOR::statusFailed;
    }
    return KOR::statusOk;
}

KOR::Status AnalysisTask::stop() {
    const std::shared_ptr<TaskChannel> channel = channel_;
    channel->stop();
    return KOR::statusOk;
}

std::uint32_t AnalysisTask::getState() {
    return channel_->isRunning() ? stateRunning : stateIdle;
}

KOR::Status AnalysisTask::setPriority(std::uint32_t priority) {
    priority_ = priority;
    return KOR::statusOk;
}

KOR::Status AnalysisTask::setSource(KOR::IDmMediaSource* source, std::int64_t, std::int64_t) {
    preparation_ = {};
    channel_->forgetResults();
    auto* const known = dynamic_cast<Source*>(source);
    if (known == nullptr) return KOR::statusFailed;
    preparation_.analysable = known->analysable();
    return KOR::statusOk;
}

KOR::Status AnalysisTask::setParameterMode(std::int32_t mode) {
    if (mode != KOR::parameterModeDefault && mode != KOR::parameterModeExplicit) {
        return KOR::statusFailed;
    }
    preparation_.mode = mode;
    return KOR::statusOk;
}

KOR::Status AnalysisTask::setSceneRanges(KOR::IKORVoidPtrList* ranges) {
    if (ranges == nullptr) return KOR::statusFailed;
    preparation_.sceneRanges.clear();
    for (std::int64_t i = 0; i < ranges->count(); ++i) {
        const auto* range = static_cast<const KOR::TickRange*>(ranges->at(i));
        if (range != nullptr) preparation_.sceneRanges.push_back(*range);
    }
    return KOR::statusOk;
}

KOR::Status AnalysisTask::setKeyFramePositions(KOR::IKORLonglongList* positions) {
    if (positions == nullptr) return KOR::statusFailed;
    preparation_.positionsTicks.clear();
    for (std::int64_t i = 0; i < positions->count(); ++i)
        preparation_.positionsTicks.push_back(positions->at(i));
    return KOR::statusOk;
}

KOR::Status AnalysisTask::setParameterBlock(std::int32_t type, const void* block) {
    if (block == nullptr) return KOR::statusFailed;
    if (type == KOR::analysisTypeScene) return take(block, preparation_.sceneParameters);
    if (type == KOR::analysisTypeKeyFrame) return take(block, preparation_.keyFrameParameters);
    return KOR::statusFailed;
}

KOR::Status AnalysisTask::getResultList(std::int32_t kind, std::int32_t, KOR::IKORVoidPtrList* list,
                                        std::int32_t) {
    if (list == nullptr) return KOR::statusFailed;
    const std::shared_ptr<const AnalysisResults> results = channel_->results();
    if (!results) return KOR::statusOk;
    switch (kind) {
        case KOR::analysisTypeScene:
            return appendCopies(results->scenes, *list);
        case KOR::analysisTypeKeyFrame:
            return appendCopies(results->keyFramePositionsTicks, *list);
        case KOR::analysisTypeFace:
            return appendCopies(results->faces, *list);
        case KOR::analysisTypeEntropy:
            return appendCopies(results->entropies, *list);
        case KOR::analysisTypeBlur:
            return appendCopies(results->blurs, *list);
        default:
            return KOR::statusOk;
    }
}

bool AnalysisTask::computes(std::int32_t type) const {
    return std::find(types_.begin(), types_.end(), type) != types_.end();
}

AnalysisRequest AnalysisTask::request() const {
    const bool isExplicit = preparation_.mode == KOR::parameterModeExplicit;
    AnalysisRequest request;
    request.wantsScenes = computes(KOR::analysisTypeScene);
    request.wantsKeyFrames = computes(KOR::analysisTypeKeyFrame);
    request.wantsFaces = computes(KOR::analysisTypeFace);
    request.wantsEntropy = computes(KOR::analysisTypeEntropy);
    request.wantsBlur = computes(KOR::analysisTypeBlur);
    request.sceneRanges = preparation_.sceneRanges;
    request.positionsTicks = preparation_.positionsTicks;
    request.sceneParameters = defaultSceneParameters;
    request.keyFrameParameters = defaultKeyFrameParameters;
    if (isExplicit && preparation_.sceneParameters) {
        request.sceneParameters = *preparation_.sceneParameters;
    }
    if (isExplicit && preparation_.keyFrameParameters) {
        request.keyFrameParameters = *preparation_.keyFrameParameters;
    }
    return request;
}

}  // namespace host_kit
