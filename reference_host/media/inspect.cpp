#include "reference_host/media/inspect.h"

#include <algorithm>
#include <optional>
#include <string>

#include "reference_host/media/Container.h"
#include "reference_host/media/Decoder.h"
#include "reference_host/media/FrameClock.h"
#include "reference_host/media/FrameReader.h"
#include "reference_host/media/KeyFrames.h"
#include "reference_host/media/Limits.h"
#include "reference_host/media/MediaError.h"
#include "reference_host/media/Messages.h"
#include "reference_host/media/frameDuration.h"

namespace reference_host::media {
namespace {

/// Decodes until it is known whether there is more than one picture.
class FirstPictures {
public:
    explicit FirstPictures(const AVStream& stream)
        : decoder_(stream, Decoder::Threads::one, Decoder::Size::reduced, Decoder::Quality::quick),
          clock_(stream) {}

    void add(const AVPacket* packet) {
        if (count_ > 1) return;
        decoder_.send(packet);
        while (const AVFrame* frame = decoder_.receive()) {
            if (count_++ == 0) origin_ = clock_.timestampOf(*frame);
        }
    }

    std::int64_t count() const { return count_; }
    std::int64_t origin() const { return origin_; }

private:
    Decoder decoder_;
    FrameClock clock_;
    std::int64_t count_ = 0;
    std::int64_t origin_ = 0;
};

/// The frames as the packets announce them.
class Packets {
public:
    void add(const AVPacket& packet) {
        // Decoded for others' sake only, never shown.
        if ((packet.flags & AV_PKT_FLAG_DISCARD) != 0) return;
        if (packet.pts == AV_NOPTS_VALUE) {
            complete_ = false;
        } else {
            lastFrame_.add(packet.pts, packet.duration);
        }
    }

    bool complete() const { return complete_; }
    const LastFrame& lastFrame() const { return lastFrame_; }

private:
    LastFrame lastFrame_;
    bool complete_ = true;
};

/// Reads the video's next packet; false at the end. A stop is no end: it throws.
bool readNext(Container& container, AVPacket& packet, const std::stop_token& stop) {
    const bool more = container.read(packet);
    if (stop.stop_requested()) throw MediaError("interrupted");
    return more;
}

LastFrame decodeToTheEnd(const std::filesystem::path& file, const std::stop_token& stop) {
    FrameReader reader(file, Decoder::Threads::several, Decoder::Size::full, stop);
    LastFrame last;
    while (const AVFrame* frame = reader.next())
        last.add(reader.timestamp(), frameDuration(*frame));
    if (stop.stop_requested()) throw MediaError("interrupted");
    return last;
}

std::int64_t durationOf(const LastFrame& last, const FrameClock& clock, std::int64_t origin) {
    const std::optional<std::int64_t> end = last.end(clock.ordinaryDistance());
    const std::optional<std::int64_t> duration =
        end ? clock.positionOf(*end, origin) : std::nullopt;
    if (!duration) throw MediaError("its timestamps are out of any sensible range");
    return std::max<std::int64_t>(*duration, 1);
}

/// Says whether an error from the opening of a file may be why nothing was decoded later on. That a
/// picture is too large for FFmpeg's own first look is no error.
bool tellsTheReason(const FirstError& opening) {
    const std::string probeLimit = "max pixel count " + std::to_string(maxProbedPixels);
    return !opening.text().empty() && opening.text().find(probeLimit) == std::string::npos;
}

[[noreturn]] void refuseUndecodable(const FirstError& error) {
    if (error.text().starts_with("get_buffer() failed")) {
        throw MediaError("there is not enough memory for its pictures");
    }
    const std::string reason = error.explain("no picture could be decoded");
    // That a picture is too large is told in words only; what would not be, is told here.
    const bool isTooLarge = error.text().starts_with("Picture size");
    throw MediaError(isTooLarge
                         ? reason + ": the limit is " + std::to_string(maxPicturePixels) + " pixels"
                         : reason);
}

}  // namespace

FootageFacts inspect(const std::filesystem::path& file, const std::stop_token& stop) {
    const FirstError opening;
    Container container(file, stop);
    const FirstError decoding;
    FirstPictures pictures(container.video());
    Packets packets;
    KeyFrames keyFrames;
    const auto packet = adopt(av_packet_alloc());
    while (readNext(container, *packet, stop)) {
        packets.add(*packet);
        keyFrames.add(*packet);
        pictures.add(packet.get());
    }
    pictures.add(nullptr);
    if (pictures.count() == 0) refuseUndecodable(tellsTheReason(opening) ? opening : decoding);

    FootageFacts facts;
    facts.originTimestamp = pictures.origin();
    if (container.endedEarly()) {
        facts.warnings.emplace_back("damaged: the file ends before its last frame");
    }
    if (pictures.count() == 1) return facts;

    facts.isVideo = true;
    facts.keyTimestamps = keyFrames.take();
    const LastFrame last = packets.complete() ? packets.lastFrame() : decodeToTheEnd(file, stop);
    facts.lastTimestamp = last.timestamp();
    facts.durationTicks = durationOf(last, FrameClock(container.video()), pictures.origin());
    return facts;
}

}  // namespace reference_host::media
