#include "reference_host/media/SequentialPictures.h"

#include <utility>

namespace reference_host::media {

SequentialPictures::SequentialPictures(const std::filesystem::path& file, const TimeGrid& kept,
                                       std::stop_token stop)
    : reader_(file, Decoder::Threads::several, Decoder::Size::full, std::move(stop),
              Decoder::Quality::quick),
      keeper_(reader_.video(), kept) {}

bool SequentialPictures::next(std::int64_t& timestamp, scenes::PictureFeatures& picture) {
    scenes::PictureSample sample;
    sample.positionTicks = 0;
    while (const AVFrame* frame = reader_.next()) {
        if (!scaler_.scale(*frame, sample)) {
            ++unreadable_;
            continue;
        }
        picture = featuresOf(sample);
        timestamp = reader_.timestamp();
        keeper_.offer(*frame, timestamp, picture.sharpness);
        return true;
    }
    return false;
}

Damage SequentialPictures::damage() const {
    return {reader_.decoder().damaged() + unreadable_, reader_.decoder().met()};
}

}  // namespace reference_host::media
