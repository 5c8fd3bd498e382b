#pragma once

#include "reference_host/vision/Picture.h"

namespace reference_host::vision {

/// Returns the Shannon entropy of the brightness in bits: 0 for one even area, 8 where all 256
/// values are equally frequent. 0 for a histogram of no pixels.
double entropyBits(const LumaHistogram& luma);

/// Returns the variance of the Laplacian of the brightness: 0 for one even area and for no picture,
/// the higher the sharper. Comparable between pictures of the same size only.
///
/// The brightness of each pixel is 0.299 red + 0.587 green + 0.114 blue, rounded; its Laplacian is
/// the sum of its four neighbours less four times itself, the picture being mirrored at its
/// borders.
double sharpness(const Picture& picture);

}  // namespace reference_host::vision
