#include "reference_host/media/SegmentedPictures.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace reference_host::media {
namespace {

/// So many pictures may wait for their turn: some 30 MB. What waits lets the others go on while a
/// segment takes long.
constexpr std::size_t mostWaiting = 4000;

/// How long progress is not told of while nothing else happens.
constexpr std::chrono::milliseconds tellInterval{50};

}  // namespace

SegmentedPictures::SegmentedPictures(std::unique_ptr<Container> container,
                                     const FootageFacts& facts, const SegmentDecoder::Plan& plan,
                                     const Crew& crew, const std::stop_token& stop, Tell tell)
    : plan_(plan),
      workerCount_(static_cast<std::int64_t>(crew.workers)),
      helperCount_(crew.helpers),
      lastTimestamp_(facts.lastTimestamp),
      length_(std::max(1.0, static_cast<double>(facts.lastTimestamp) -
                                static_cast<double>(facts.originTimestamp))),
      tell_(std::move(tell)),
      stopped_(stop, [this] { end_.request_stop(); }),
      container_(std::move(container)),
      segments_(*container_),
      kept_(plan.kept) {
    try {
        for (std::size_t i = 0; i < crew.workers; ++i)
            workers_.emplace_back([this] { work(Role::worker); });
        for (std::size_t i = 0; i < crew.helpers; ++i)
            workers_.emplace_back([this] { work(Role::helper); });
    } catch (...) {
        endWork();  // those that there are would wait for somebody to take what they have seen
        throw;
    }
}

SegmentedPictures::~SegmentedPictures() {
    endWork();
}

void SegmentedPictures::endWork() {
    end_.request_stop();
    {
        const std::scoped_lock lock(mutex_);
        changed_.notify_all();
    }
    workers_.clear();
}

void SegmentedPictures::work(Role role) {
    std::optional<SegmentDecoder> decoder;
    while (const std::optional<Segment> segment = takeSegment(role)) {
        try {
            decode(*segment, decoder);
        } catch (...) {
            // Segments in front of it may be left, which nobody else might be there to decode.
            decoder.reset();
            const std::scoped_lock lock(mutex_);
            failures_.emplace(segment->number, std::current_exception());
            changed_.notify_all();
        }
    }
}

void SegmentedPictures::decode(const Segment& segment, std::optional<SegmentDecoder>& decoder) {
    if (!decoder) open(decoder);
    SegmentView view = decoder->decode(segment, [&](double part) { handle(segment, part); });
    const std::scoped_lock lock(mutex_);
    const std::size_t pictures = view.pictures.size();
    views_.emplace(segment.number, std::move(view));
    waiting_ += pictures;
    changed_.notify_all();
}

void SegmentedPictures::open(std::optional<SegmentDecoder>& decoder) {
    const std::scoped_lock lock(mutex_);  // reading may change what is known about the stream
    decoder.emplace(container_->video(), plan_, end_.get_token());
}

bool SegmentedPictures::isWaitingFull() const {
    return waiting_ >= mostWaiting;
}

bool SegmentedPictures::mayTake(Role role) const {
    if (role == Role::helper && !segments_.isDownTo(helperCount_)) return false;
    return !isWaitingFull() || segments_.first() < wanted_ + workerCount_;
}

std::optional<Segment> SegmentedPictures::takeSegment(Role role) {
    using enum SegmentQueue::Order;
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this, role] {
        return end_.stop_requested() || !failures_.empty() || isReadWhole_ || mayTake(role);
    });
    if (end_.stop_requested() || isReadWhole_) return std::nullopt;
    // What is in front of a failure is still wanted.
    const std::int64_t limit = failures_.empty() ? SegmentQueue::noLimit : failures_.begin()->first;
    try {
        if (auto segment = segments_.take(isWaitingFull() ? ofVideo : largestFirst, limit)) {
            ++taken_;
            changed_.notify_all();
            return segment;
        }
        isReadWhole_ = failures_.empty();
    } catch (...) {
        // Still under the lock: nobody may take a segment from behind the one that failed.
        failures_.emplace(taken_, std::current_exception());
    }
    changed_.notify_all();
    return std::nullopt;
}

void SegmentedPictures::handle(const Segment& segment, double part) {
    const std::int64_t begin = segment.groups.front().front()->pts;
    const std::int64_t end = segment.next.empty() ? lastTimestamp_ : segment.next.front()->pts;
    const std::scoped_lock lock(mutex_);
    handled_ += part * (static_cast<double>(end) - static_cast<double>(begin));
}

bool SegmentedPictures::waitForView() {
    std::unique_lock lock(mutex_);
    for (;;) {
        if (end_.stop_requested()) return false;
        const auto found = views_.find(wanted_);
        if (found != views_.end()) {
            view_ = std::move(found->second);
            views_.erase(found);
            waiting_ -= view_.pictures.size();
            ++wanted_;
            changed_.notify_all();
            return true;
        }
        // Others may still be at work on segments before the one that failed.
        const auto failed = failures_.find(wanted_);
        if (failed != failures_.end()) std::rethrow_exception(failed->second);
        if (isReadWhole_ && wanted_ == taken_) return false;
        const double share = std::min(1.0, handled_ / length_);
        lock.unlock();
        tell_(share);
        lock.lock();
        changed_.wait_for(lock, tellInterval);
    }
}

bool SegmentedPictures::next(std::int64_t& timestamp, scenes::PictureFeatures& picture) {
    std::uint32_t leftOut = 0;
    while (nextPicture_ == view_.pictures.size()) {
        const bool goesOn = view_.goesOn;
        leftOut += view_.leftOutBehind;
        if (!waitForView()) return false;
        if (!view_.pictures.empty()) {
            scenes::PictureFeatures& first = view_.pictures.front().features;
            first.goesOn = first.goesOn || goesOn;
            first.leftOutBefore += leftOut;
        }
        nextPicture_ = 0;
        damage_.damaged += view_.damaged;
        damage_.all += view_.frames;
        kept_.append(std::move(view_.kept));
    }
    SegmentPicture& next = view_.pictures[nextPicture_++];
    timestamp = next.timestamp;
    picture = next.features;
    return true;
}

}  // namespace reference_host::media
