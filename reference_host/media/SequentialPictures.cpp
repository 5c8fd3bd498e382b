#include "reference_host/media/SequentialPictures.h"

#include <utility>

namespace reference_host::media {

SequentialPictures::SequentialPictures(const std::filesystem::path& file, const TimeGrid& kept,
                                       std::stop_token stop)
    : frames_(file, Decoder::Quality::quick, std::move(stop)), keeper_(frames_.video(), kept) {}

bool SequentialPictures::next(std::int64_t& timestamp, scenes::PictureFeatures& picture) {
    scenes::PictureSample sample;
    sample.positionTicks = 0;
    while (const TimedFrame timed = frames_.next()) {
        if (!scaler_.scale(*timed.frame, sample)) {
            ++unreadable_;
            continue;
        }
        picture = featuresOf(sample);
        timestamp = timed.timestamp;
        keeper_.offer(*timed.frame, timestamp, picture.sharpness);
        return true;
    }
    return false;
}

Damage SequentialPictures::damage() const {
    const Damage decoding = frames_.damage();
    return {decoding.damaged + unreadable_, decoding.all};
}

}  // namespace reference_host::media
