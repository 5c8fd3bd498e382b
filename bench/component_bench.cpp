#include <algorithm>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "fake_host/Counted.h"
#include "fake_host/FakeHost.h"
#include "fake_host/FakeMedia.h"
#include "fake_host/FakeTask.h"
#include "host/lists.h"
#include "tests/support/ComponentProbe.h"

namespace fake_host {
namespace {

constexpr std::int64_t second = KOR::ticksPerSecond;

/// A component with `count` entries, which are the given materials in turn, on a host that records
/// nothing. Log lines are composed and then dropped.
class Setting {
public:
    Setting(const std::vector<MediaSpec>& specs, std::int64_t count,
            const std::vector<std::int32_t>& kindCodes) {
        host().reset();
        host().recording = false;
        component_.reset(createMaterialAnalysis());
        for (const MediaSpec& spec : specs)
            materials_.emplace_back(new FakeMedia(spec));
        const Owned<KOR::IKORVoidPtrList> materials(createKORVoidPtrList());
        for (std::int64_t i = 0; i < count; ++i)
            materials->append(asElement(*materials_[static_cast<std::size_t>(i) % specs.size()]));
        component_->insertMaterials(materials.get(), 0);
        const Owned<KOR::IKORIntList> kinds(createKORIntList());
        for (const std::int32_t kind : kindCodes)
            kinds->append(kind);
        component_->setAnalysisKinds(kinds.get());
    }

    KOR::IKorMaterialAnalysis& component() { return *component_; }
    KOR::ComponentProbe probe() { return KOR::ComponentProbe(*component_); }
    FakeMedia& firstMaterial() { return *materials_.front(); }

private:
    std::vector<Owned<FakeMedia>> materials_;
    Owned<KOR::IKorMaterialAnalysis> component_;
};

/// Reports the time that falls to each of `count` things.
void reportTimeEach(benchmark::State& state, const char* name, std::int64_t count) {
    state.counters[name] = benchmark::Counter(
        static_cast<double>(count),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void RunOverPhotos(benchmark::State& state) {
    Setting setting({photo("photo.jpg")}, state.range(0), {4, 3});
    for (auto _ : state)
        setting.component().start();
    state.SetComplexityN(state.range(0));
    reportTimeEach(state, "each photo", state.range(0));
}
BENCHMARK(RunOverPhotos)->Arg(10)->Arg(1000)->Arg(100000)->Complexity();

void RunOverVideos(benchmark::State& state) {
    Setting setting({video("clip.mp4", 100 * second).keyFrames({5 * second})}, state.range(0),
                    {4, 3});
    host().tasksFinishInsideStart = true;
    for (auto _ : state)
        setting.component().start();
    state.SetComplexityN(state.range(0));
    reportTimeEach(state, "each video", state.range(0));
}
BENCHMARK(RunOverVideos)->Arg(10)->Arg(1000)->Arg(100000)->Complexity();

void RunOverPhotosAndVideos(benchmark::State& state) {
    Setting setting({photo("photo.jpg"), video("clip.mp4", 100 * second).keyFrames({5 * second})},
                    state.range(0), {4, 3});
    host().tasksFinishInsideStart = true;
    for (auto _ : state)
        setting.component().start();
    state.SetComplexityN(state.range(0));
    reportTimeEach(state, "each material", state.range(0));
}
BENCHMARK(RunOverPhotosAndVideos)->Arg(10)->Arg(1000)->Arg(100000)->Complexity();

void ProgressEvent(benchmark::State& state) {
    Setting setting({video("clip.mp4", 100 * second)}, state.range(0), {4, 3});
    setting.component().start();
    KOR::TaskEventPayload payload{};
    payload.progress = 50;
    for (auto _ : state)
        host().task(0).send(1, KOR::taskEventProgress, &payload);
    state.SetComplexityN(state.range(0));
    reportTimeEach(state, "each material", state.range(0));
}
BENCHMARK(ProgressEvent)->Arg(1)->Arg(10)->Arg(1000)->Arg(100000)->Complexity();

/// Scenes of two seconds with keyframes spread evenly over them.
MediaSpec footage(std::int64_t scenes, std::int64_t keyFrames) {
    MediaSpec spec = video("clip.mp4", scenes * 2 * second);
    for (std::int64_t i = 0; i < scenes; ++i) {
        spec.sceneResults.push_back({i * 2 * second, (i + 1) * 2 * second});
    }
    for (std::int64_t i = 0; i < keyFrames; ++i) {
        spec.keyFrameResults.push_back(i * spec.durationTicks / keyFrames);
    }
    return spec;
}

void Intake(benchmark::State& state) {
    Setting setting({footage(state.range(0), state.range(1))}, 1, {6});
    FakeTask& task = host().task(0);
    task.setSource(&setting.firstMaterial(), 0, 0);
    setting.probe().moveTo(0, 0);
    for (auto _ : state) {
        setting.probe().scenceDetectFinished(&task);
        setting.probe().keyFrameDetectFinishedInternal(&task);
    }
    state.SetComplexityN(state.range(1));
    reportTimeEach(state, "each keyframe", state.range(1));
}
BENCHMARK(Intake)
    ->Args({50, 500})
    ->Args({500, 5000})
    ->Args({5000, 50000})
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

void Ranking(benchmark::State& state) {
    Setting setting({footage(state.range(0), state.range(1))}, 1, {6});
    FakeTask& task = host().task(0);
    task.setSource(&setting.firstMaterial(), 0, 0);
    setting.probe().moveTo(0, 0);
    setting.probe().scenceDetectFinished(&task);
    setting.probe().keyFrameDetectFinishedInternal(&task);
    auto keyFrames = setting.probe().keyFramesOfScences();
    for (auto& scene : keyFrames) {
        for (auto& keyFrame : scene)
            keyFrame.score = static_cast<double>(keyFrame.pos % 7919);
    }
    for (auto _ : state) {
        state.PauseTiming();
        setting.probe().keyFramesOfScences() = keyFrames;
        state.ResumeTiming();
        setting.probe().rankScenceScores();
    }
    state.SetComplexityN(state.range(1));
    reportTimeEach(state, "each keyframe", state.range(1));
}
BENCHMARK(Ranking)
    ->Args({50, 500})
    ->Args({500, 5000})
    ->Args({5000, 50000})
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

}  // namespace
}  // namespace fake_host
