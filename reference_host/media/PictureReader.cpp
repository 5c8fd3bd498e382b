#include "reference_host/media/PictureReader.h"

#include <optional>
#include <utility>

#include "reference_host/media/Container.h"
#include "reference_host/media/Decoder.h"
#include "reference_host/media/FrameClock.h"
#include "reference_host/media/PictureScaler.h"

namespace reference_host::media {

class PictureReader::Stream {
public:
    Stream(const std::filesystem::path& file, const FootageFacts& facts, std::stop_token stop)
        : stop_(std::move(stop)),
          origin_(facts.originTimestamp),
          durationTicks_(facts.durationTicks),
          container_(file, stop_),
          decoder_(container_.video(), Decoder::Threads::several),
          clock_(container_.video()),
          packet_(adopt(av_packet_alloc())) {}

    bool next(scenes::PictureSample& picture) {
        while (const AVFrame* frame = nextFrame()) {
            const std::optional<std::int64_t> position =
                clock_.positionOf(clock_.timestampOf(*frame), origin_);
            if (!position || *position <= lastPosition_ || *position >= durationTicks_) continue;
            if (!scaler_.scale(*frame, picture)) {
                ++unreadable_;
                continue;
            }
            picture.positionTicks = lastPosition_ = *position;
            return true;
        }
        return false;
    }

    Damage damage() const { return {decoder_.damaged() + unreadable_, decoder_.met()}; }

private:
    const AVFrame* nextFrame() {
        for (;;) {
            if (stop_.stop_requested()) return nullptr;
            if (const AVFrame* frame = decoder_.receive()) return frame;
            if (atEnd_) return nullptr;
            atEnd_ = !container_.read(*packet_);
            decoder_.send(atEnd_ ? nullptr : packet_.get());
        }
    }

    std::stop_token stop_;
    std::int64_t origin_;
    std::int64_t durationTicks_;
    Container container_;
    Decoder decoder_;
    FrameClock clock_;
    PictureScaler scaler_;
    AvPointer<AVPacket> packet_;
    std::int64_t lastPosition_ = -1;
    std::int64_t unreadable_ = 0;
    bool atEnd_ = false;
};

PictureReader::PictureReader(const std::filesystem::path& file, const FootageFacts& facts,
                             std::stop_token stop)
    : stream_(std::make_unique<Stream>(file, facts, std::move(stop))) {}

PictureReader::~PictureReader() = default;

bool PictureReader::next(scenes::PictureSample& picture) {
    return stream_->next(picture);
}

PictureReader::Damage PictureReader::damage() const {
    return stream_->damage();
}

}  // namespace reference_host::media
