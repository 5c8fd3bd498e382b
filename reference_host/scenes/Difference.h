#pragma once

#include "reference_host/scenes/Thumbnail.h"

namespace reference_host::scenes {

/// How far two pictures are apart beyond what motion explains, in steps of brightness and colour
/// for each pixel: 0 for equal ones, below 5 from one picture to the next in most scenes, 30 to 300
/// between scenes.
struct Difference {
    float overall = 0;
    /// The part that is not confined to a few places: a new scene differs everywhere, a window that
    /// pops up or a title in one place.
    float widespread = 0;
};

/// Compares two pictures, in two ways that are added.
///
/// Shape: each block of `after` is compared with the place near it in `before` that fits best, so
/// that pans, zooms, shakes and small movements leave little. Tones: how far the values of all
/// pixels, wherever they are, differ; they count for no more than the shape.
Difference differenceBetween(const Thumbnail& before, const Thumbnail& after);

/// Returns how far two pictures are apart pixel by pixel, as if nothing had moved.
float unmovedDifference(const Thumbnail& a, const Thumbnail& b);

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
