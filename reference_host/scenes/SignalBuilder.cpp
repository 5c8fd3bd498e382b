#include "reference_host/scenes/SignalBuilder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace reference_host::scenes {
namespace {

/// Dissolves are looked for in at most about 33 pictures a second: the nearest that lets 30 through
/// undiminished, however their positions are rounded.
constexpr std::int64_t smallestBlendStepTicks = ticksPerSecond / 33;

}  // namespace

void SignalBuilder::add(const PictureFeatures& picture) {
    const WindowPicture entry{signals_.size(), picture.positionTicks, picture.thumbnail,
                              picture.goesOn};
    FrameSignal signal;
    signal.positionTicks = picture.positionTicks;
    signal.number = picture.leftOutBefore + (signals_.empty() ? 0 : signals_.back().number + 1);
    signal.sharpness = picture.sharpness;
    signal.contrast = picture.contrast;
    signal.isChangeUnknown = picture.goesOn;
    signals_.push_back(signal);
    addForChange(entry);
    addForBlend(entry);
}

void SignalBuilder::addForChange(const WindowPicture& picture) {
    changeWindow_.push(picture);
    if (changeWindow_.end() > lastingReach) setChange(changeWindow_.end() - 1 - lastingReach);
}

void SignalBuilder::addForBlend(WindowPicture picture) {
    if (blendWindow_.end() > 0) {
        const std::int64_t newest = blendWindow_[blendWindow_.end() - 1].positionTicks;
        picture.stepTicks = picture.positionTicks - newest;
        if (picture.stepTicks < smallestBlendStepTicks) return;
        addStandIns(picture);
    }
    pushForBlend(picture);
}

/// Puts mixes of the newest picture of the window and the next one into the places of those between
/// them, if some were left out.
void SignalBuilder::addStandIns(const WindowPicture& next) {
    const WindowPicture newest = blendWindow_[blendWindow_.end() - 1];
    const std::size_t frames = next.frame - newest.frame;
    const std::size_t steps = signals_[next.frame].number - signals_[newest.frame].number;
    if (steps == frames) return;
    std::int64_t latest = newest.positionTicks;
    for (std::size_t i = 1; i < steps; ++i) {
        const double share = static_cast<double>(i) / static_cast<double>(steps);
        const std::int64_t position =
            newest.positionTicks + std::llround(share * static_cast<double>(next.stepTicks));
        if (position - latest < smallestBlendStepTicks) continue;
        if (next.positionTicks - position < smallestBlendStepTicks) break;
        latest = position;
        pushForBlend({newest.frame, position, mixOf(newest.thumbnail, next.thumbnail, share), false,
                      next.stepTicks, frames});
    }
}

void SignalBuilder::pushForBlend(const WindowPicture& picture) {
    blendWindow_.push(picture);
    if (blendWindow_.end() > blendReach) setBlend(blendWindow_.end() - 1 - blendReach);
}

void SignalBuilder::setChange(std::size_t number) {
    if (changeWindow_[number].goesOn) return;
    FrameSignal& signal = signals_[changeWindow_[number].frame];
    const Change change = changeAt(changeWindow_, number, changePairs_);
    signal.change = change.overall;
    signal.lastingChange = change.lasting;
}

void SignalBuilder::setBlend(std::size_t number) {
    if (blendWindow_[number].isStandIn()) return;
    signals_[blendWindow_[number].frame].blend = blendAt(blendWindow_, number);
}

std::vector<FrameSignal> SignalBuilder::finish() {
    const std::size_t changes = changeWindow_.end();
    for (std::size_t i = changes - std::min(changes, lastingReach); i < changes; ++i) {
        setChange(i);
    }
    const std::size_t blends = blendWindow_.end();
    for (std::size_t i = blends - std::min(blends, blendReach); i < blends; ++i)
        setBlend(i);
    return std::move(signals_);
}

}  // namespace reference_host::scenes
