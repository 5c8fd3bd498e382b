#include "reference_host/vision/HogFaces.h"

#include <iterator>
#include <sstream>
#include <string>
#include <utility>

#include <dlib/image_processing/frontal_face_detector.h>
#include <dlib/opencv.h>

namespace reference_host::vision {

struct HogFaces::Model {
    dlib::frontal_face_detector detector;
};

namespace {

/// What packFaceModel has written.
constexpr unsigned char packedModel[] = {
#include "reference_host/vision/faceModel.inc"
};

dlib::frontal_face_detector unpackModel() {
    std::istringstream bytes(std::string(std::begin(packedModel), std::end(packedModel)));
    dlib::frontal_face_detector detector;
    dlib::deserialize(detector, bytes);
    return detector;
}

/// The model to be copied: a detector changes while it looks. Never destroyed: while the process
/// ends, a run may still be on its way to copy it.
const dlib::frontal_face_detector& unpackedModel() {
    static const auto& model = *new const dlib::frontal_face_detector(unpackModel());
    return model;
}

}  // namespace

HogFaces::HogFaces() = default;

HogFaces::~HogFaces() = default;

std::vector<Find> HogFaces::find(const cv::Mat& picture, double lowestScore) {
    if (!model_) model_.reset(new Model{unpackedModel()});
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
