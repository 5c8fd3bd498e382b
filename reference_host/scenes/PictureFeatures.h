#pragma once

#include <cstdint>

#include "reference_host/scenes/PictureSample.h"
#include "reference_host/scenes/Thumbnail.h"

namespace reference_host::scenes {

/// All that scene analysis looks at of one picture.
struct PictureFeatures {
    /// Where the picture begins to be shown: ticks from the first picture of the footage.
    std::int64_t positionTicks = 0;
    /// How much fine detail it shows; see sharpnessOf().
    float sharpness = 0;
    /// Standard deviation of the brightness; see contrastOf().
    float contrast = 0;
    Thumbnail thumbnail;
    /// It is known to belong to the scene of the picture before, however much that differs: what
    /// is between them was left out.
    bool goesOn = false;
    /// How many pictures between this one and the one before it were left out.
    std::uint32_t leftOutBefore = 0;
};

/// Returns the features of `picture`.
PictureFeatures featuresOf(const PictureSample& picture);

}  // namespace reference_host::scenes
