#pragma once

#include "reference_host/vision/Picture.h"

namespace reference_host::vision {

/// Returns the Shannon entropy of the brightness in bits: 0 for one even area, 8 where all 256
/// values are equally frequent. 0 for a histogram of no pixels.
double entropyBits(const LumaHistogram& luma);

/// Returns the variance of the Laplacian of the brightness: 0 for one even area, the higher the
/// sharper. Comparable between pictures of the same size only.
double sharpness(const Picture& picture);

}  // namespace reference_host::vision
