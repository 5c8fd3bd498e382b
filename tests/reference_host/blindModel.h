#pragma once

#include <string>
#include <vector>

#include "tests/vision/OnnxModel.h"

namespace reference_host_tests {

/// A model as OpenCV's detector takes it, which sees no face anywhere; `offset` makes it another.
inline std::string blindModel(float offset = 0) {
    constexpr std::size_t places = 19200 + 3200 + 800 + 300;
    return reference_host::vision::OnnxModel()
        .output("loc", std::vector<float>(places * 14, offset))
        .output("conf", std::vector<float>(places * 2))
        .output("iou", std::vector<float>(places))
        .bytes();
}

}  // namespace reference_host_tests
