#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stop_token>

#include "reference_host/media/Container.h"
#include "reference_host/media/Decoder.h"
#include "reference_host/media/FrameClock.h"

namespace reference_host::media {

/// Decodes the frames of a media file, in the order in which they are shown, from its beginning or
/// from a key frame on. Belongs to one thread at a time.
class FrameReader {
public:
    /// Opens `file`. Reading ends soon after `stop` is requested. Throws MediaError.
    FrameReader(const std::filesystem::path& file, Decoder::Threads threads, std::stop_token stop);

    /// Returns the next frame, valid until the next call of any function that is not const; null at
    /// the end and after a stop.
    const AVFrame* next();

    /// When the last frame that was returned is shown.
    std::int64_t timestamp() const { return timestamp_; }

    /// Goes to the key frame at `timestamp`, so that next() gives it or what is left of it.
    /// The file is entered at the place that it names for `from`, which is no later, and what
    /// lies between is read but not decoded. False where the key frame is not met: the next frame
    /// is then any one.
    bool startAt(std::int64_t timestamp, std::int64_t from);

    const AVStream& video() const { return container_.video(); }
    const FrameClock& clock() const { return clock_; }
    const Decoder& decoder() const { return decoder_; }

    /// How many packets of the video have been read so far.
    std::int64_t packetsRead() const { return container_.packetsRead(); }

private:
    std::stop_token stop_;
    Container container_;
    Decoder decoder_;
    FrameClock clock_;
    AvPointer<AVPacket> packet_;
    std::int64_t timestamp_ = 0;
    bool atEnd_ = false;
};

}  // namespace reference_host::media
