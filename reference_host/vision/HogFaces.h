#pragma once

#include <memory>
#include <vector>

#include <opencv2/core.hpp>

#include "reference_host/vision/FaceBoxes.h"

namespace reference_host::vision {

/// Finds faces by the directions of their edges, with the detector that dlib brings along: it knows
/// faces from the front, turned and tilted a little, and is rarely wrong. Too slow to look
/// everywhere for small faces, so it is asked about places. Belongs to one thread at a time.
class HogFaces {
public:
    HogFaces();
    HogFaces(const HogFaces&) = delete;
    HogFaces& operator=(const HogFaces&) = delete;
    ~HogFaces();

    /// Returns the faces in `picture`, one channel of 8 bits: those that are at least smallestPx
    /// across and score at least `lowestScore`, 0 being where the model itself would draw the line.
    std::vector<Find> find(const cv::Mat& picture, double lowestScore);

    /// What the detector's model is made for.
    static constexpr int smallestPx = 80;

private:
    struct Model;
    /// Null until it is needed.
    std::unique_ptr<Model> model_;
};

}  // namespace reference_host::vision
