#include "reference_host/media/PositionReader.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "reference_host/media/FrameReader.h"
#include "reference_host/media/MediaError.h"
#include "reference_host/media/PictureMaker.h"

namespace reference_host::media {
namespace {

/// Up to so many frames before the next key frame, decoding on is as quick as going there: after a
/// jump, the decoder's threads have to start anew.
constexpr std::int64_t framesOfAJump = 4;

/// A decoded frame, kept, and where it begins to be shown.
struct PlacedFrame {
    AvPointer<AVFrame> frame = adopt(av_frame_alloc());
    std::int64_t timestamp = 0;
    /// None while there is no frame.
    std::optional<std::int64_t> positionTicks;

    void clear() {
        av_frame_unref(frame.get());
        positionTicks.reset();
    }
};

}  // namespace

class PositionReader::Stream {
public:
    Stream(std::filesystem::path file, const FootageFacts& facts, std::stop_token stop)
        : file_(std::move(file)),
          isVideo_(facts.isVideo),
          origin_(facts.originTimestamp),
          durationTicks_(facts.durationTicks),
          lastTimestamp_(facts.lastTimestamp),
          keys_(facts.keyTimestamps),
          stop_(std::move(stop)),
          reader_(open()) {}

    bool read(std::int64_t positionTicks, vision::Picture& picture) {
        // A photo has one picture, whose position is 0.
        if (!find(isVideo_ ? positionTicks : 0)) return false;
        const AVFrame& frame = *shown_.frame;
        const AVRational shape = reader_->shapeOfPixels(frame);
        const Orientation orientation = reader_->orientationOf(frame);
        if (!isVideo_) return maker_.make(frame, shape, orientation, picture);
        // On the way that a picture takes that is kept in between.
        return maker_.store(frame, shape, orientation, stored_) && restore(stored_, picture);
    }

    bool restore(const StoredPicture& stored, vision::Picture& picture) {
        return maker_.restore(stored, picture);
    }

    std::int64_t framePixels() const { return reader_->framePixels(); }

    Effort effort() const {
        Effort effort = earlier_;
        effort.packets += reader_->packetsRead();
        effort.frames += reader_->decoder().decoded();
        return effort;
    }

private:
    std::unique_ptr<FrameReader> open() const {
        // A photo may be as large as memory allows; of it, there is only one frame to wait for.
        return isVideo_ ? std::make_unique<FrameReader>(file_, Decoder::Threads::several,
                                                        Decoder::Size::full, stop_)
                        : std::make_unique<FrameReader>(file_, Decoder::Threads::one,
                                                        Decoder::Size::reduced, stop_);
    }

    /// Makes shown_ the frame that is shown at the position. False where there is none.
    bool find(std::int64_t positionTicks) {
        const std::size_t keys = keysUpTo(positionTicks);
        if (isOnTheWay(positionTicks, keys)) {
            const Outcome outcome = goOn(positionTicks);
            if (outcome == Outcome::found || keys <= 1) return outcome == Outcome::found;
        }
        // From the last key frame up to the position; where nothing comes of it that is shown by
        // then, from key frames further and further back. A frame that is missing may come after a
        // longer way, too: some decoders withhold what follows a key frame soon. Once that is
        // tried, it is lost.
        bool wasMissing = false;
        for (std::size_t back = 1; back < keys; back *= 2) {
            if (!startAt(keys - back)) break;
            const Outcome outcome = goOn(positionTicks);
            if (outcome == Outcome::found) return true;
            if (stop_.stop_requested() || (outcome == Outcome::missing && wasMissing)) return false;
            wasMissing = outcome == Outcome::missing;
        }
        return startOver() && goOn(positionTicks) == Outcome::found;
    }

    /// Returns how many key frames are shown up to the position.
    std::size_t keysUpTo(std::int64_t positionTicks) const {
        const auto isUpTo = [&](std::int64_t timestamp) {
            const auto position = reader_->clock().positionOf(timestamp, origin_);
            return position ? *position <= positionTicks : timestamp <= origin_;
        };
        return static_cast<std::size_t>(std::partition_point(keys_.begin(), keys_.end(), isUpTo) -
                                        keys_.begin());
    }

    /// Says whether the position is best reached by decoding on from here. `keys` is how many key
    /// frames are shown up to it.
    bool isOnTheWay(std::int64_t positionTicks, std::size_t keys) const {
        if (!isAtStart_ && !isUpTo(shown_, positionTicks)) return false;
        if (keys <= 1) return true;
        const std::int64_t latest = isAtStart_            ? keys_.front()
                                    : next_.positionTicks ? next_.timestamp
                                                          : shown_.timestamp;
        std::int64_t ahead = 0;
        return !__builtin_sub_overflow(keys_[keys - 1], latest, &ahead) &&
               ahead / framesOfAJump <= reader_->clock().ordinaryDistance();
    }

    static bool isUpTo(const PlacedFrame& frame, std::int64_t positionTicks) {
        return frame.positionTicks && *frame.positionTicks <= positionTicks;
    }

    /// Goes to a key frame. The container may lead past it: then from the places that it gives for
    /// key frames further and further back. False where no way leads there.
    bool startAt(std::size_t key) {
        forgetFrames();
        for (std::size_t back = usualBack_; !stop_.stop_requested(); back = 2 * back + 1) {
            ++earlier_.jumps;
            const std::size_t from = key - std::min(back, key);
            if (reader_->startAt(keys_[key], keys_[from])) {
                usualBack_ = back;
                return true;
            }
            if (from == 0) break;
        }
        // Nor will there be any to the other ones.
        keys_.clear();
        return false;
    }

    /// Goes to the beginning of the file. False where it cannot be opened any more.
    bool startOver() {
        if (isAtStart_) return true;
        forgetFrames();
        try {
            std::unique_ptr<FrameReader> reader = open();
            earlier_ = effort();
            ++earlier_.jumps;
            reader_ = std::move(reader);
            isAtStart_ = true;
        } catch (const MediaError&) {
            return false;
        }
        return true;
    }

    void forgetFrames() {
        shown_.clear();
        next_.clear();
        lastPosition_ = -1;
        isAtStart_ = false;
    }

    enum class Outcome {
        found,    ///< shown_ is the frame
        missing,  ///< the frame was announced and did not come
        none      ///< no frame came that is shown by then
    };

    /// Decodes on until shown_ is known to be the last frame up to the position.
    Outcome goOn(std::int64_t positionTicks) {
        while (shown_.positionTicks != positionTicks && (next_.positionTicks || takeNext())) {
            if (!isUpTo(next_, positionTicks)) break;
            std::swap(shown_, next_);
            next_.clear();
        }
        if (stop_.stop_requested() || !isUpTo(shown_, positionTicks)) return Outcome::none;
        return isMissing(positionTicks) ? Outcome::missing : Outcome::found;
    }

    /// Says whether a frame is known to be missing that would be shown at the position instead of
    /// shown_. Second fields are announced as well, at half a frame's distance.
    bool isMissing(std::int64_t positionTicks) const {
        if (shown_.positionTicks == positionTicks) return false;
        std::optional<std::int64_t> missed = reader_->missed();
        // Where a file has become shorter, nothing is announced behind its end: not even when the
        // frame there should be over.
        const bool isCutOff = !missed && !next_.positionTicks;
        if (isCutOff) missed = lastTimestamp_;
        const std::int64_t ordinary = reader_->clock().ordinaryDistance();
        std::int64_t distance = 0;
        if (!missed || __builtin_sub_overflow(*missed, shown_.timestamp, &distance)) return false;
        if (distance < ordinary) return false;
        const std::optional<std::int64_t> position =
            reader_->clock().positionOf(isCutOff ? shown_.timestamp + ordinary : *missed, origin_);
        return position && *position <= positionTicks;
    }

    /// Fills next_. False at the end.
    bool takeNext() {
        isAtStart_ = false;
        while (const AVFrame* frame = reader_->next()) {
            const std::optional<std::int64_t> position =
                reader_->clock().positionOf(reader_->timestamp(), origin_);
            if (!position || *position <= lastPosition_ || *position >= durationTicks_) continue;
            if (av_frame_ref(next_.frame.get(), frame) < 0) throw std::bad_alloc();
            next_.timestamp = reader_->timestamp();
            next_.positionTicks = lastPosition_ = *position;
            return true;
        }
        return false;
    }

    const std::filesystem::path file_;
    const bool isVideo_;
    const std::int64_t origin_;
    const std::int64_t durationTicks_;
    const std::int64_t lastTimestamp_;
    std::vector<std::int64_t> keys_;
    const std::stop_token stop_;
    std::unique_ptr<FrameReader> reader_;
    PictureMaker maker_;
    StoredPicture stored_;
    /// What was done by earlier readers, and all jumps.
    Effort earlier_;
    PlacedFrame shown_;
    /// The frame behind shown_, where it is known.
    PlacedFrame next_;
    std::int64_t lastPosition_ = -1;
    /// From how many key frames further back the last one was met.
    std::size_t usualBack_ = 0;
    bool isAtStart_ = true;
};

PositionReader::PositionReader(const std::filesystem::path& file, const FootageFacts& facts,
                               std::stop_token stop)
    : stream_(std::make_unique<Stream>(file, facts, std::move(stop))) {}

PositionReader::~PositionReader() = default;

bool PositionReader::read(std::int64_t positionTicks, vision::Picture& picture) {
    return stream_->read(positionTicks, picture);
}

std::int64_t PositionReader::framePixels() const {
    return stream_->framePixels();
}

bool PositionReader::restore(const StoredPicture& stored, vision::Picture& picture) {
    return stream_->restore(stored, picture);
}

PositionReader::Effort PositionReader::effort() const {
    return stream_->effort();
}

}  // namespace reference_host::media
