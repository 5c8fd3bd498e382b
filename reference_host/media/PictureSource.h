#pragma once

#include <cstdint>
#include <vector>

#include "reference_host/media/Damage.h"
#include "reference_host/media/PictureKeeper.h"
#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host::media {

/// How long a stretch of a video may be of which nothing is seen: the given part of the way from
/// one key frame to the next, but not less than `always` and not more than `most`.
struct LongestGap {
    std::int64_t always = 0;
    std::int64_t most = 0;
    double part = 0;
    /// Up to this length, it may be left out for what is seen at its two ends alone.
    std::int64_t brief = 0;
    /// Up to this length, pictures that others need may be left out of it where nothing moves; 0
    /// where pictures are kept, since what is predicted without them is only good enough to be
    /// compared.
    std::int64_t still = 0;
};

/// Gives the pictures of a video, or those of them that matter for its scenes.
class PictureSource {
public:
    virtual ~PictureSource() = default;

    /// Fills in the next picture, in ascending order of timestamps. False at the end and after a
    /// stop.
    virtual bool next(std::int64_t& timestamp, scenes::PictureFeatures& picture) = 0;

    virtual Damage damage() const = 0;

    /// Returns what was kept of the pictures that were given, in ascending order. Call it once, at
    /// the end.
    virtual std::vector<KeptPicture> takeKept() = 0;
};

}  // namespace reference_host::media
