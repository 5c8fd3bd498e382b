#include "reference_host/scenes/KeyFrameChoice.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>

#include "reference_host/scenes/FrameSignal.h"

namespace reference_host::scenes {
namespace {

using Frames = std::span<const FrameRecord>;

/// Returns the frames whose position is in `range`.
Frames framesWithin(Frames frames, KOR::TickRange range) {
    const auto before = [](const FrameRecord& frame, std::int64_t position) {
        return frame.positionTicks < position;
    };
    const auto first = std::lower_bound(frames.begin(), frames.end(), range.begin, before);
    const auto last =
        std::lower_bound(first, frames.end(), std::max(range.begin, range.end), before);
    return {first, last};
}

/// Returns the number of the first frame at `positionTicks` or behind it; between two that were
/// looked at, those that were left out are taken to follow each other evenly. There has to be one.
std::int64_t numberAt(Frames frames, std::int64_t positionTicks) {
    const auto next = std::partition_point(
        frames.begin(), frames.end(),
        [&](const FrameRecord& frame) { return frame.positionTicks < positionTicks; });
    if (next == frames.begin()) return next->number;
    const FrameRecord& before = *std::prev(next);
    if (next == frames.end()) return std::int64_t{before.number} + 1;
    const auto ticks = static_cast<double>(next->positionTicks - positionTicks);
    const auto gap = static_cast<double>(next->positionTicks - before.positionTicks);
    return next->number - static_cast<std::int64_t>(ticks / gap * (next->number - before.number));
}

/// Returns those of `frames` whose number is at least `begin` and below `end`.
Frames framesNumbered(Frames frames, std::int64_t begin, std::int64_t end) {
    const auto at = [&](std::int64_t number) {
        return std::partition_point(frames.begin(), frames.end(), [&](const FrameRecord& frame) {
            return frame.number < number;
        });
    };
    const auto first = at(begin);
    return {first, std::max(first, at(end))};
}

/// Returns the frames of a range of `footage`, which holds one, without the margins at both ends;
/// where nothing would be left, one frame stays, which divides the range in the margins'
/// proportion.
Frames framesBetweenMargins(Frames footage, KOR::TickRange range,
                            const KOR::KeyFrameParameters& parameters) {
    const Frames frames = framesWithin(footage, range);
    const std::int64_t begin = numberAt(footage, range.begin);
    const std::int64_t end = numberAt(footage, range.end);
    const std::int64_t marginBegin = std::max(0, parameters.marginFramesBegin);
    const std::int64_t marginEnd = std::max(0, parameters.marginFramesEnd);
    const Frames inner = framesNumbered(frames, begin + marginBegin, end - marginEnd);
    if (!inner.empty()) return inner;
    const double share =
        static_cast<double>(marginBegin) / static_cast<double>(marginBegin + marginEnd);
    const auto dividing =
        begin + static_cast<std::int64_t>(share * static_cast<double>(end - 1 - begin));
    const Frames later = framesNumbered(frames.subspan(1), dividing + 1, end);
    return {std::prev(later.begin()), 1};
}

/// Returns how many keyframes a range of this length is worth.
std::size_t wantedCount(std::int64_t lengthTicks, const KOR::KeyFrameParameters& parameters) {
    const std::int64_t stretch = std::max(1, parameters.secondsPerKeyFrame) * ticksPerSecond;
    const std::int64_t started = lengthTicks / stretch + (lengthTicks % stretch != 0 ? 1 : 0);
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(started, 1, std::max(1, parameters.maxPerScene)));
}

/// Returns the frame of `frames` that is shown at `positionTicks`, or the first.
const FrameRecord& frameShownAt(Frames frames, double positionTicks) {
    const auto next = std::upper_bound(
        frames.begin(), frames.end(), positionTicks, [](double position, const FrameRecord& frame) {
            return position < static_cast<double>(frame.positionTicks);
        });
    return next == frames.begin() ? *next : *std::prev(next);
}

/// Where in its stretch the candidate number `k` of `count` lies: evenly over the middle half, so
/// that two keyframes are never closer than half a stretch; those nearest the middle come first.
double placeOfCandidate(std::size_t k, std::size_t count) {
    const double distance = 0.5 * static_cast<double>((k + 1) / 2) / static_cast<double>(count);
    return k % 2 == 1 ? 0.5 - distance : 0.5 + distance;
}

/// Returns the sharpest of the frames that were kept from `begin` to before `end`, the first among
/// equals; null where none was.
const FrameRecord* sharpestKept(Frames frames, double begin, double end) {
    const FrameRecord* best = nullptr;
    for (const FrameRecord& frame : frames) {
        const double position = static_cast<double>(frame.positionTicks);
        if (!frame.isKept || position < begin || position >= end) continue;
        if (best == nullptr || frame.sharpness > best->sharpness) best = &frame;
    }
    return best;
}

/// Returns the sharpest of `candidates` frames in the middle half of a stretch.
const FrameRecord* sharpestOf(Frames frames, double begin, double length, std::size_t candidates) {
    const FrameRecord* best = nullptr;
    for (std::size_t k = 0; k < candidates; ++k) {
        const FrameRecord& frame =
            frameShownAt(frames, begin + length * placeOfCandidate(k, candidates));
        if (best == nullptr || frame.sharpness > best->sharpness) best = &frame;
    }
    return best;
}

/// Appends a frame of each of `count` equal stretches: a kept one from its middle half or, failing
/// that, from anywhere in it, or else the sharpest candidate; frames is not empty.
void chooseFrom(Frames frames, std::size_t count, std::size_t candidates,
                std::vector<std::int64_t>& chosen) {
    const double begin = static_cast<double>(frames.front().positionTicks);
    const double end = static_cast<double>(frames.back().positionTicks + 1);
    const double length = (end - begin) / static_cast<double>(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double first = begin + length * static_cast<double>(i);
        const FrameRecord* best = sharpestKept(frames, first + length / 4, first + length * 3 / 4);
        if (best == nullptr) best = sharpestKept(frames, first, first + length);
        if (best == nullptr) best = sharpestOf(frames, first, length, candidates);
        chosen.push_back(best->positionTicks);
    }
}

/// Appends the keyframes of one range of `footage`; `pureFrames` are its frames outside of
/// transitions.
void chooseWithin(const KOR::TickRange& range, const FootageRecord& footage, Frames pureFrames,
                  const KOR::KeyFrameParameters& parameters, std::vector<std::int64_t>& chosen) {
    const Frames all = framesWithin(footage.frames, range);
    if (all.empty()) return;
    const std::int64_t begin = std::max<std::int64_t>(0, range.begin);
    const std::int64_t end =
        std::min(range.end, std::max(footage.durationTicks, all.back().positionTicks + 1));
    const Frames inner = framesBetweenMargins(footage.frames, {begin, end}, parameters);
    const Frames pure =
        framesWithin(pureFrames, {inner.front().positionTicks, inner.back().positionTicks + 1});
    const Frames eligible = pure.empty() ? inner : pure;
    const std::size_t count = std::min(wantedCount(end - begin, parameters), eligible.size());
    const auto candidates = static_cast<std::size_t>(std::max(1, parameters.candidatesPerKeyFrame));
    chooseFrom(eligible, count, std::min(candidates, eligible.size() / count + 1), chosen);
}

}  // namespace

std::vector<std::int64_t> chooseKeyFrames(const FootageRecord& footage,
                                          const std::vector<KOR::TickRange>& ranges,
                                          const KOR::KeyFrameParameters& parameters) {
    std::vector<FrameRecord> pureFrames;
    std::copy_if(footage.frames.begin(), footage.frames.end(), std::back_inserter(pureFrames),
                 [](const FrameRecord& frame) { return !frame.inTransition; });
    std::vector<std::int64_t> chosen;
    for (const KOR::TickRange& range : ranges) {
        chooseWithin(range, footage, pureFrames, parameters, chosen);
    }
    std::sort(chosen.begin(), chosen.end());
    chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
    return chosen;
}

}  // namespace reference_host::scenes
