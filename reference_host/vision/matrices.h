#pragma once

#include <opencv2/core.hpp>

#include "reference_host/vision/Picture.h"

namespace reference_host::vision {

/// Returns the picture as OpenCV sees it: blue, green, red. It shares the pixels of `picture`, must
/// not outlive them, and is only to be read.
cv::Mat colourMatrix(const Picture& picture);

/// Returns the brightness of the picture, 8 bits (BT.601 weights of its colours), as a copy.
cv::Mat brightnessMatrix(const Picture& picture);

}  // namespace reference_host::vision
