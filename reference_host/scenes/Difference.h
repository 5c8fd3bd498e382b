#pragma once

#include "reference_host/scenes/Thumbnail.h"

namespace reference_host::scenes {

/// Returns how far two pictures are apart beyond what motion explains: the mean over all pixels of
/// the differences in brightness and both colours, 0 to 765.
///
/// Each block of `after` is compared with the place near it in `before` that fits best, so that
/// pans, zooms, shakes and small movements leave little.
float movedDifference(const Thumbnail& before, const Thumbnail& after);

/// Returns `picture` with its brightness shifted and stretched towards the mean and contrast of
/// `model`: what is left between the two is no mere change of light.
Thumbnail inLightOf(const Thumbnail& model, const Thumbnail& picture);

/// How well a picture is a mix of two others.
struct Mixture {
    /// The part of `end` in the nearest mix: 0 is `begin` alone, 1 is `end` alone; motion may take
    /// it a little outside.
    float share = 0;
    /// What the nearest mix leaves unexplained, in relation to the distance of the two ends: 0 for
    /// a perfect mix, 0.5 where half of the picture shows one end and the other half the other.
    float residual = 0;
};

/// Finds the mix of `begin` and `end` that is nearest to `middle`. Two equal ends give 0 and 0.
Mixture mixtureOf(const Thumbnail& begin, const Thumbnail& middle, const Thumbnail& end);

}  // namespace reference_host::scenes
