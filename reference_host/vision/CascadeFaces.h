#pragma once

#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "reference_host/vision/FaceBoxes.h"
#include "reference_host/vision/LbpCascade.h"

namespace reference_host::vision {

/// Finds what may be faces by one of the cascades that come with OpenCV: fast, and often wrong.
class CascadeFaces {
public:
    /// Loads the cascade `name`, a path below OpenCV's data directory: the one there was when this
    /// was built, or one below the system's directories for shared files (XDG_DATA_DIRS and the
    /// usual ones). Throws std::runtime_error, which names the file and the package that holds it.
    explicit CascadeFaces(const std::string& name);

    /// Returns the places in `picture` (one channel of 8 bits) that look like a face of
    /// `smallestPx` and more across to more than `neighbours` neighbouring windows.
    std::vector<Box> find(const cv::Mat& picture, int smallestPx, int neighbours) const;

private:
    LbpCascade cascade_;
};

}  // namespace reference_host::vision
