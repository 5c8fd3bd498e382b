#include "reference_host/scenes/SignalBuilder.h"

#include <algorithm>
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

void SignalBuilder::addForBlend(const WindowPicture& picture) {
    if (blendWindow_.end() > 0) {
        const WindowPicture& newest = blendWindow_[blendWindow_.end() - 1];
        if (picture.positionTicks - newest.positionTicks < smallestBlendStepTicks) return;
    }
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
