#include "reference_host/media/PictureKeeper.h"

#include <algorithm>
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
    const auto [place, isNew] = candidates_.try_emplace(placeOf(timestamp));
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

void PictureKeeper::changeView(std::int64_t timestamp) {
    if (grid_.step <= 0) return;
    const auto [change, isNew] = changes_.try_emplace(grid_.partOf(timestamp), timestamp);
    change->second = std::min(change->second, timestamp);
}

PictureKeeper::Place PictureKeeper::placeOf(std::int64_t timestamp) const {
    const std::int64_t part = grid_.partOf(timestamp);
    const auto change = changes_.find(part);
    return {part, change != changes_.end() && timestamp >= change->second};
}

void PictureKeeper::storeOldest() {
    for (auto& [place, candidate] : candidates_) {
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
    for (auto& [place, candidate] : candidates_) {
        if (candidate.frame) store(candidate);
        taken.push_back(std::move(candidate.kept));
    }
    candidates_.clear();
    changes_.clear();
    // A change may have turned out to be earlier than it seemed at first.
    std::sort(taken.begin(), taken.end(),
              [](const KeptPicture& a, const KeptPicture& b) { return a.timestamp < b.timestamp; });
    return taken;
}

void KeptPictures::append(std::vector<KeptPicture> more) {
    for (KeptPicture& next : more) {
        const bool isExtra =
            !kept_.empty() && grid_.partOf(kept_.back().timestamp) == grid_.partOf(next.timestamp);
        if (!isExtra || extras_ < grid_.extras) {
            extras_ += isExtra ? 1 : 0;
            kept_.push_back(std::move(next));
        } else if (next.sharpness > kept_.back().sharpness) {
            kept_.back() = std::move(next);
        }
    }
}

}  // namespace reference_host::media
