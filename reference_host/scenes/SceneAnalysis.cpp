#include "reference_host/scenes/SceneAnalysis.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "reference_host/scenes/SignalBuilder.h"
#include "reference_host/scenes/Transitions.h"

namespace reference_host::scenes {
namespace {

constexpr double defaultThreshold = 3.0;

std::vector<FrameRecord> recordsOf(std::span<const FrameSignal> signals,
                                   std::span<const Transition> transitions) {
    std::vector<FrameRecord> records;
    records.reserve(signals.size());
    for (const FrameSignal& signal : signals) {
        records.push_back(
            {signal.positionTicks, signal.sharpness, signal.change, false, false, signal.number});
    }
    for (const Transition& transition : transitions) {
        for (std::size_t i = transition.begin; i < transition.end; ++i)
            records[i].inTransition = true;
    }
    return records;
}

std::vector<KOR::TickRange> scenesBetween(std::span<const FrameSignal> signals,
                                          std::span<const Transition> transitions,
                                          std::int64_t durationTicks) {
    std::vector<KOR::TickRange> scenes;
    std::int64_t begin = 0;
    for (const Transition& transition : transitions) {
        const std::int64_t boundary = signals[transition.boundary].positionTicks;
        if (boundary <= begin || boundary >= durationTicks) continue;
        scenes.push_back({begin, boundary});
        begin = boundary;
    }
    if (begin < durationTicks) scenes.push_back({begin, durationTicks});
    return scenes;
}

}  // namespace

class SceneAnalysis::Pipeline {
public:
    explicit Pipeline(double threshold)
        : threshold_(std::isfinite(threshold) && threshold > 0 ? threshold : defaultThreshold) {}

    void add(const PictureFeatures& picture) {
        if (picture.positionTicks <= lastPositionTicks_) return;
        lastPositionTicks_ = picture.positionTicks;
        builder_.add(picture);
    }

    FootageRecord finish(std::int64_t durationTicks) {
        const std::vector<FrameSignal> signals = builder_.finish();
        const std::vector<Transition> transitions = findTransitions(signals, threshold_);
        FootageRecord record;
        record.durationTicks = std::max<std::int64_t>(0, durationTicks);
        record.frames = recordsOf(signals, transitions);
        record.scenes = scenesBetween(signals, transitions, record.durationTicks);
        return record;
    }

private:
    double threshold_;
    std::int64_t lastPositionTicks_ = -1;
    SignalBuilder builder_;
};

SceneAnalysis::SceneAnalysis(double threshold) : pipeline_(std::make_unique<Pipeline>(threshold)) {}
SceneAnalysis::SceneAnalysis(SceneAnalysis&&) noexcept = default;
SceneAnalysis& SceneAnalysis::operator=(SceneAnalysis&&) noexcept = default;
SceneAnalysis::~SceneAnalysis() = default;

void SceneAnalysis::add(const PictureFeatures& picture) {
    pipeline_->add(picture);
}

FootageRecord SceneAnalysis::finish(std::int64_t durationTicks) {
    return pipeline_->finish(durationTicks);
}

}  // namespace reference_host::scenes
