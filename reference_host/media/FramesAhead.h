#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <filesystem>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

#include "reference_host/media/AvPointers.h"
#include "reference_host/media/Damage.h"
#include "reference_host/media/FrameReader.h"

namespace reference_host::media {

/// A frame and when it is shown, in the unit of its stream.
struct TimedFrame {
    /// Null at the end.
    AvPointer<AVFrame> frame;
    std::int64_t timestamp = 0;

    explicit operator bool() const { return frame != nullptr; }
};

/// Decodes the frames of a video on a thread of its own, a few ahead of who takes them: many
/// decoders use one core only, and leave another to whoever looks at the frames. next() and
/// damage() belong to one thread at a time.
class FramesAhead {
public:
    /// Opens `file`. Reading ends soon after `stop` is requested. Throws MediaError.
    FramesAhead(const std::filesystem::path& file, Decoder::Quality quality, std::stop_token stop);
    ~FramesAhead();

    /// Returns the next frame; none at the end and after a stop.
    TimedFrame next();

    /// What has been lost up to the end, once that has been met.
    Damage damage() const { return damage_; }

    const AVStream& video() const { return reader_.video(); }

private:
    void read();
    /// False after a stop.
    bool append(TimedFrame frame);

    /// Asked to stop when the run is, and at the end of this.
    std::stop_source end_;
    std::stop_callback<std::function<void()>> stopped_;
    FrameReader reader_;

    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<TimedFrame> frames_;
    bool isReadWhole_ = false;
    std::exception_ptr failure_;

    Damage damage_;
    std::jthread thread_;
};

}  // namespace reference_host::media
