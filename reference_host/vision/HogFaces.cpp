#include "reference_host/vision/HogFaces.h"

#include <utility>

#include <dlib/image_processing/frontal_face_detector.h>
#include <dlib/opencv.h>

namespace reference_host::vision {

struct HogFaces::Model {
    dlib::frontal_face_detector detector = dlib::get_frontal_face_detector();
};

HogFaces::HogFaces() : model_(std::make_unique<Model>()) {}

HogFaces::~HogFaces() = default;

std::vector<Find> HogFaces::find(const cv::Mat& picture, double lowestScore) {
    std::vector<std::pair<double, dlib::rectangle>> places;
    model_->detector(dlib::cv_image<unsigned char>(picture), places, lowestScore);
    std::vector<Find> finds;
    for (const auto& [score, place] : places) {
        const Box box{static_cast<double>(place.left()), static_cast<double>(place.top()),
                      static_cast<double>(place.width()), static_cast<double>(place.height())};
        finds.push_back({box, score});
    }
    return finds;
}

}  // namespace reference_host::vision
