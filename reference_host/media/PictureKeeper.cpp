#include "reference_host/media/PictureKeeper.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "reference_host/media/frameShape.h"

namespace reference_host::media {
namespace {

/// So many frames are held on to before they are made small: those of the parts around the current
/// one, since frames come in the order in which they are decoded.
constexpr std::size_t mostFrames = 2;

}  // namespace

std::int64_t TimeGrid::partOf(std::int64_t timestamp) const {
    const std::int64_t distance = timestamp - origin;
    return distance / step - (distance % step < 0 ? 1 : 0);
}

void PictureKeeper::offer(const AVFrame& frame, std::int64_t timestamp, float sharpness) {
    if (grid_.step <= 0) return;
    const auto [place, isNew] = candidates_.try_emplace(grid_.partOf(timestamp));
    Candidate& candidate = place->second;
    const bool isBetter =
        isNew || sharpness > candidate.kept.sharpness ||
        (sharpness == candidate.kept.sharpness && timestamp < candidate.kept.timestamp);
    if (!isBetter) return;
    candidate.kept = {timestamp, sharpness, nullptr};
    if (!candidate.frame) {
        if (frames_ == mostFrames) storeOldest();
        candidate.frame = adopt(av_frame_alloc());
        ++frames_;
    }
    av_frame_unref(candidate.frame.get());
    if (av_frame_ref(candidate.frame.get(), &frame) < 0) throw std::bad_alloc();
}

void PictureKeeper::storeOldest() {
    for (auto& [part, candidate] : candidates_) {
        if (candidate.frame) return store(candidate);
    }
}

void PictureKeeper::store(Candidate& candidate) {
    const AvPointer<AVFrame> frame = std::move(candidate.frame);
    --frames_;
    StoredPicture picture;
    const Orientation orientation = orientationOf(stream_, *frame).value_or(Orientation{});
    if (maker_.store(*frame, shapeOfPixels(stream_, *frame), orientation, picture)) {
        candidate.kept.picture = PictureMemory::keep(std::move(picture));
    }
}

std::vector<KeptPicture> PictureKeeper::take() {
    std::vector<KeptPicture> taken;
    for (auto& [part, candidate] : candidates_) {
        if (candidate.frame) store(candidate);
        taken.push_back(std::move(candidate.kept));
    }
    candidates_.clear();
    return taken;
}

void append(std::vector<KeptPicture>& kept, std::vector<KeptPicture> more, const TimeGrid& grid) {
    auto rest = more.begin();
    if (!kept.empty() && rest != more.end() &&
        grid.partOf(kept.back().timestamp) == grid.partOf(rest->timestamp)) {
        if (rest->sharpness > kept.back().sharpness) kept.back() = std::move(*rest);
        ++rest;
    }
    std::move(rest, more.end(), std::back_inserter(kept));
}

}  // namespace reference_host::media
