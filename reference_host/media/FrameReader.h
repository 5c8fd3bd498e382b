#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>

#include "reference_host/media/AwaitedFrames.h"
#include "reference_host/media/Container.h"
#include "reference_host/media/Decoder.h"
#include "reference_host/media/FrameClock.h"
#include "reference_host/media/Orientation.h"

namespace reference_host::media {

/// Decodes the frames of a media file, in the order in which they are shown, from its beginning or
/// from a key frame on. Belongs to one thread at a time.
class FrameReader {
public:
    /// Opens `file`. Reading ends soon after `stop` is requested. Throws MediaError.
    FrameReader(const std::filesystem::path& file, Decoder::Threads threads, Decoder::Size size,
                std::stop_token stop, Decoder::Quality quality = Decoder::Quality::exact);

    /// Returns the next frame, valid until the next call of any function that is not const; null at
    /// the end and after a stop.
    const AVFrame* next();

    /// When the last frame that was returned is shown.
    std::int64_t timestamp() const { return timestamp_; }

    /// When a frame would have been shown that was announced to come right before the last one that
    /// was returned, or before the end where that was met, and did not come.
    std::optional<std::int64_t> missed() const { return awaited_.firstMissed(); }

    /// Goes to the key frame at `timestamp`, so that next() gives that frame; frames
    /// that are shown before it, but stored behind it, may come first. The file is entered at the
    /// place that it names for `from`, which is no later; what lies between is read but not
    /// decoded. False where the key frame is not met: the next frame can then be any one.
    bool startAt(std::int64_t timestamp, std::int64_t from);

    /// Returns how wide a pixel of `frame` is in proportion to its height: as the container has it,
    /// otherwise as the frame itself says; 0/1 where nobody does.
    AVRational shapeOfPixels(const AVFrame& frame) const;

    /// Returns how `frame` is to be turned: as it says itself, otherwise as its container says,
    /// otherwise as the file of a photo says in a place that FFmpeg does not read.
    Orientation orientationOf(const AVFrame& frame) const;

    /// How many pixels a frame has, as far as the container tells; 0 where it does not.
    std::int64_t framePixels() const {
        const AVCodecParameters& codec = *container_.video().codecpar;
        return std::int64_t{codec.width} * codec.height;
    }

    const AVStream& video() const { return container_.video(); }
    const FrameClock& clock() const { return clock_; }
    const Decoder& decoder() const { return decoder_; }

    /// How many packets of the video have been read so far.
    std::int64_t packetsRead() const { return container_.packetsRead(); }

private:
    void send();

    std::stop_token stop_;
    Container container_;
    Decoder decoder_;
    FrameClock clock_;
    AvPointer<AVPacket> packet_;
    AwaitedFrames awaited_;
    std::int64_t timestamp_ = 0;
    /// What the bytes of the first packet say, which is the whole file for a photo.
    std::optional<Orientation> ofBytes_;
    bool atEnd_ = false;
};

}  // namespace reference_host::media
