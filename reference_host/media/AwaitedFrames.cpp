#include "reference_host/media/AwaitedFrames.h"

#include <algorithm>

namespace reference_host::media {
namespace {

/// More than any decoder holds back (16 for the order, and one for each thread).
constexpr std::size_t maxAwaited = 64;

}  // namespace

void AwaitedFrames::announce(std::int64_t timestamp) {
    awaited_.insert(std::upper_bound(awaited_.begin(), awaited_.end(), timestamp), timestamp);
    if (awaited_.size() > maxAwaited) awaited_.erase(awaited_.begin());
}

void AwaitedFrames::meet(std::int64_t timestamp) {
    missed_.reset();
    const auto later = std::upper_bound(awaited_.begin(), awaited_.end(), timestamp);
    if (later != awaited_.begin() && awaited_.front() < timestamp) missed_ = awaited_.front();
    awaited_.erase(awaited_.begin(), later);
}

void AwaitedFrames::end() {
    missed_.reset();
    if (!awaited_.empty()) missed_ = awaited_.front();
}

}  // namespace reference_host::media
