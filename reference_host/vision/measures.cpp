#include "reference_host/vision/measures.h"

#include <cmath>
#include <numeric>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "reference_host/vision/matrices.h"

namespace reference_host::vision {

double entropyBits(const LumaHistogram& luma) {
    const auto pixels =
        static_cast<double>(std::accumulate(luma.begin(), luma.end(), std::int64_t{0}));
    double bits = 0;
    for (const std::int64_t count : luma) {
        if (count == 0) continue;
        const double share = static_cast<double>(count) / pixels;
        bits += share * std::log2(1 / share);
    }
    return bits;
}

double sharpness(const Picture& picture) try {
    if (picture.bgr.empty()) return 0;
    cv::Mat laplacian;
    // From -1020 to 1020: all of them are exact.
    cv::Laplacian(brightnessMatrix(picture), laplacian, CV_16S);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    return deviation[0] * deviation[0];
} catch (const cv::Exception& error) {
    throw std::runtime_error("measuring the sharpness failed: " + error.err);
}

}  // namespace reference_host::vision
