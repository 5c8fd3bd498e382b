#include "reference_host/media/PictureReader.h"

#include <optional>
#include <utility>

#include "reference_host/media/FrameReader.h"
#include "reference_host/media/PictureScaler.h"

namespace reference_host::media {

class PictureReader::Stream {
public:
    Stream(const std::filesystem::path& file, const FootageFacts& facts, std::stop_token stop)
        : origin_(facts.originTimestamp),
          durationTicks_(facts.durationTicks),
          reader_(file, Decoder::Threads::several, Decoder::Size::full, std::move(stop)) {}

    bool next(scenes::PictureSample& picture) {
        while (const AVFrame* frame = reader_.next()) {
            const std::optional<std::int64_t> position =
                reader_.clock().positionOf(reader_.timestamp(), origin_);
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

    Damage damage() const {
        return {reader_.decoder().damaged() + unreadable_, reader_.decoder().met()};
    }

private:
    std::int64_t origin_;
    std::int64_t durationTicks_;
    FrameReader reader_;
    PictureScaler scaler_;
    std::int64_t lastPosition_ = -1;
    std::int64_t unreadable_ = 0;
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
