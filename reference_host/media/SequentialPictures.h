#pragma once

#include <filesystem>
#include <stop_token>

#include "reference_host/media/FramesAhead.h"
#include "reference_host/media/PictureScaler.h"
#include "reference_host/media/PictureSource.h"

namespace reference_host::media {

/// Decodes all pictures one after the other, with the threads of the decoder, and looks at them on
/// the caller's.
class SequentialPictures final : public PictureSource {
public:
    /// One picture of each part of `kept` is kept. Reading ends soon after `stop` is requested.
    /// Throws MediaError.
    SequentialPictures(const std::filesystem::path& file, const TimeGrid& kept,
                       std::stop_token stop);

    bool next(std::int64_t& timestamp, scenes::PictureFeatures& picture) override;
    Damage damage() const override;
    std::vector<KeptPicture> takeKept() override { return keeper_.take(); }

private:
    FramesAhead frames_;
    PictureScaler scaler_;
    PictureKeeper keeper_;
    std::int64_t unreadable_ = 0;
};

}  // namespace reference_host::media
