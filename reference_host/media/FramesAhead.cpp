#include "reference_host/media/FramesAhead.h"

#include <utility>

namespace reference_host::media {
namespace {

/// Enough for neither side to wait long, and little memory even for large frames.
constexpr std::size_t mostAhead = 2;

}  // namespace

FramesAhead::FramesAhead(const std::filesystem::path& file, Decoder::Quality quality,
                         std::stop_token stop)
    : stopped_(std::move(stop), [this] { end_.request_stop(); }),
      reader_(file, Decoder::Threads::several, Decoder::Size::full, end_.get_token(), quality),
      thread_([this] { read(); }) {}

FramesAhead::~FramesAhead() {
    end_.request_stop();
}

void FramesAhead::read() {
    std::exception_ptr failure;
    try {
        while (const AVFrame* frame = reader_.next()) {
            AvPointer<AVFrame> own = adopt(av_frame_clone(frame));
            if (!append({std::move(own), reader_.timestamp()})) break;
        }
    } catch (...) {
        failure = std::current_exception();
    }
    const std::scoped_lock lock(mutex_);
    failure_ = failure;
    isReadWhole_ = true;
    changed_.notify_all();
}

bool FramesAhead::append(TimedFrame frame) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait(lock, end_.get_token(), [this] { return frames_.size() < mostAhead; })) {
        return false;
    }
    frames_.push_back(std::move(frame));
    changed_.notify_all();
    return true;
}

TimedFrame FramesAhead::next() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, end_.get_token(), [this] { return !frames_.empty() || isReadWhole_; });
    if (end_.stop_requested()) return {};
    if (frames_.empty()) {
        if (failure_) std::rethrow_exception(failure_);
        damage_ = {reader_.decoder().damaged(), reader_.decoder().met()};
        return {};
    }
    TimedFrame frame = std::move(frames_.front());
    frames_.pop_front();
    changed_.notify_all();
    return frame;
}

}  // namespace reference_host::media
