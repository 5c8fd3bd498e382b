#include "reference_host/vision/matrices.h"

#include <opencv2/imgproc.hpp>

namespace reference_host::vision {

cv::Mat colourMatrix(const Picture& picture) {
    // OpenCV has no matrix over constant pixels; nobody writes to this one.
    auto* pixels = const_cast<std::uint8_t*>(picture.bgr.data());
    return {picture.heightPx, picture.widthPx, CV_8UC3, pixels};
}

cv::Mat brightnessMatrix(const Picture& picture) {
    cv::Mat brightness;
    cv::cvtColor(colourMatrix(picture), brightness, cv::COLOR_BGR2GRAY);
    return brightness;
}

}  // namespace reference_host::vision
