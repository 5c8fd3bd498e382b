#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host::scenes {

PictureFeatures featuresOf(const PictureSample& picture) {
    PictureFeatures features{.positionTicks = picture.positionTicks,
                             .sharpness = sharpnessOf(picture),
                             .thumbnail = thumbnailOf(picture)};
    features.contrast = contrastOf(features.thumbnail);
    return features;
}

}  // namespace reference_host::scenes
