#include "validator/host/Run.h"

#include <chrono>
#include <string>

#include "validator/host/Patience.h"

namespace validator {
namespace {

/// How many calls of start() this thread is in.
thread_local int startsHere = 0;

}  // namespace

KOR::IBsMediaAnalysisTask& analysisOf(KOR::IDmBaseObj& task) {
    void* const side = task.queryInterface("IBsMediaAnalysisTask");
    expectObject("queryInterface() of IBsMediaAnalysisTask", side);
    return *static_cast<KOR::IBsMediaAnalysisTask*>(side);
}

std::vector<const void*> resultsOf(KOR::IBsMediaAnalysisTask& task, std::int32_t kind,
                                   KOR::IKORVoidPtrList& list) {
    const std::string what = "getResultList() of kind " + std::to_string(kind);
    expectEqual(what, task.getResultList(kind, 0, &list, 0), KOR::statusOk);
    std::vector<const void*> elements;
    for (std::int64_t i = 0; i < list.count(); ++i) {
        elements.push_back(list.at(i));
        expectObject("an element of " + what, elements.back());
    }
    return elements;
}

Run::Run(const HostLibrary& host, const Types& types, KOR::IDmMediaSource* source)
    : host_(host), listener(*new Listener), task(host.task(types)), analysis(analysisOf(*task)) {
    task->addCallBack(&listener);
    if (source == nullptr) return;
    expectEqual("setSource()", analysis.setSource(source, 0, 0), KOR::statusOk);
}

Run::~Run() {
    // The end of a task that hangs would, too.
    if (isStuck()) static_cast<void>(task.release());
}

void Run::start() {
    ++startsHere;
    const KOR::Status status = task->start();
    --startsHere;
    expectEqual("start()", status, KOR::statusOk);
}

void Run::finish() {
    start();
    listener.waitForEnd();
}

void Run::setPositions(const std::vector<std::int64_t>& positions) {
    expectEqual("setKeyFramePositions()",
                analysis.setKeyFramePositions(host_.longlongList(positions).get()), KOR::statusOk);
}

void Run::setRanges(std::vector<KOR::TickRange> ranges) {
    std::vector<void*> elements;
    for (KOR::TickRange& range : ranges)
        elements.push_back(&range);
    expectEqual("setSceneRanges()", analysis.setSceneRanges(host_.borrowingList(elements).get()),
                KOR::statusOk);
    // What the caller still owns after the call it may use for something else.
    for (KOR::TickRange& range : ranges)
        range = {};
}

void Run::setMode(std::int32_t mode) {
    expectEqual("setParameterMode()", analysis.setParameterMode(mode), KOR::statusOk);
}

void Run::setBlock(const KOR::SceneParameters& block) {
    expectEqual("setParameterBlock()", analysis.setParameterBlock(KOR::analysisTypeScene, &block),
                KOR::statusOk);
}

void Run::setBlock(const KOR::KeyFrameParameters& block) {
    expectEqual("setParameterBlock()",
                analysis.setParameterBlock(KOR::analysisTypeKeyFrame, &block), KOR::statusOk);
}

std::vector<KOR::TickRange> Run::scenes() const {
    return results<KOR::TickRange>(KOR::analysisTypeScene);
}

std::vector<std::int64_t> Run::keyFrames() const {
    return results<std::int64_t>(KOR::analysisTypeKeyFrame);
}

std::vector<KOR::FaceDetectFrame> Run::faces() const {
    return results<KOR::FaceDetectFrame>(KOR::analysisTypeFace);
}

std::vector<KOR::EntropySample> Run::entropies() const {
    return results<KOR::EntropySample>(KOR::analysisTypeEntropy);
}

std::vector<KOR::BlurSample> Run::blurs() const {
    return results<KOR::BlurSample>(KOR::analysisTypeBlur);
}

std::int64_t Run::count(std::int32_t kind) const {
    const auto list = host_.owningList();
    return static_cast<std::int64_t>(resultsOf(analysis, kind, *list).size());
}

void holdUntil(const Flag& flag) {
    if (startsHere > 0) skip("the run goes on inside start(), so that it cannot be held");
    flag.isSetWithin(patience);
}

void letTimePass(const HostLibrary& host) {
    constexpr auto longEnough = std::chrono::milliseconds(50);
    const auto end = std::chrono::steady_clock::now() + longEnough;
    const Material video = host.video();
    do {
        Run run(host, {1}, video.source);
        run.finish();
    } while (std::chrono::steady_clock::now() < end);
}

}  // namespace validator
