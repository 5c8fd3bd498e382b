#include <stdexcept>

#include <opencv2/objdetect.hpp>

#include "reference_host/vision/FaceBoxes.h"
#include "reference_host/vision/FaceDetector.h"
#include "reference_host/vision/matrices.h"

namespace reference_host::vision {
namespace {

class ModelFaceDetector final : public FaceDetector {
public:
    explicit ModelFaceDetector(const std::filesystem::path& model)
        : detector_(cv::FaceDetectorYN::create(model.string(), "", {64, 64})) {}

    std::vector<KOR::KorRect> detect(const Picture& picture) override {
        detector_->setInputSize({picture.widthPx, picture.heightPx});
        cv::Mat faces;
        detector_->detect(colourMatrix(picture), faces);
        std::vector<Find> finds;
        for (int row = 0; row < faces.rows; ++row) {
            const auto* values = faces.ptr<float>(row);
            finds.push_back({{values[0], values[1], values[2], values[3]}, values[14]});
        }
        return faceRects(withoutDuplicates(std::move(finds)), picture.widthPx, picture.heightPx);
    }

private:
    cv::Ptr<cv::FaceDetectorYN> detector_;
};

}  // namespace

std::unique_ptr<FaceDetector> makeFaceDetector(const std::filesystem::path& model) try {
    return std::make_unique<ModelFaceDetector>(model);
} catch (const cv::Exception&) {
    throw std::runtime_error(model.string() + " is no face detection model");
}

}  // namespace reference_host::vision
