#include <stdexcept>

#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

#include "reference_host/vision/FaceBoxes.h"
#include "reference_host/vision/FaceDetector.h"
#include "reference_host/vision/HogFaces.h"
#include "reference_host/vision/matrices.h"
#include "reference_host/vision/modelFiles.h"

namespace reference_host::vision {
namespace {

constexpr const char* cascadeName = "lbpcascades/lbpcascade_frontalface.xml";

/// Below, a face has too few pixels to be told from chance.
constexpr int smallestCandidatePx = 30;

/// From one size that is looked for to the next. Larger steps save time and lose faces.
constexpr double sizeStep = 1.1;

/// How many places beside each other make a candidate, in addition to the first: the cascade may be
/// generous since the second opinion is strict.
constexpr int neighbours = 1;

/// A candidate is shown to the second detector enlarged or reduced to this size, which leaves that
/// one room to find the face smaller than the candidate.
constexpr double shownFacePx = 1.25 * HogFaces::smallestPx;

/// The surroundings that are shown, in sizes of the candidate.
constexpr double shownWidth = 1.8;

/// A face that the second detector finds belongs to the candidate from this overlap on: the two
/// draw their boxes differently.
constexpr double agreement = 0.3;

class BuiltInFaceDetector final : public FaceDetector {
public:
    BuiltInFaceDetector() : cascadeFile_(installedCascade(cascadeName)) {
        if (!cascade_.load(cascadeFile_.string()))
            throw std::runtime_error(cascadeFile_.string() + " is no face detector's file");
    }

    std::vector<KOR::KorRect> detect(const Picture& picture) override {
        const cv::Mat brightness = brightnessMatrix(picture);
        std::vector<Find> faces;
        for (const Box& candidate : candidates(brightness)) {
            for (const Find& face : confirmed(candidate, brightness))
                faces.push_back(face);
        }
        return faceRects(withoutDuplicates(std::move(faces)), picture.widthPx, picture.heightPx);
    }

private:
    std::vector<Box> candidates(const cv::Mat& brightness) {
        std::vector<cv::Rect> places;
        cascade_.detectMultiScale(brightness, places, sizeStep, neighbours, 0,
                                  {smallestCandidatePx, smallestCandidatePx});
        std::vector<Box> boxes;
        for (const cv::Rect& place : places) {
            boxes.push_back({static_cast<double>(place.x), static_cast<double>(place.y),
                             static_cast<double>(place.width), static_cast<double>(place.height)});
        }
        return boxes;
    }

    std::vector<Find> confirmed(const Box& candidate, const cv::Mat& brightness) {
        const double scale = shownFacePx / candidate.width;
        const double reach = (shownWidth - 1) / 2;
        const double left = candidate.x - reach * candidate.width;
        const double top = candidate.y - reach * candidate.height;
        const auto side = static_cast<int>(shownFacePx * shownWidth);
        const cv::Mat place =
            (cv::Mat_<double>(2, 3) << scale, 0, -left * scale, 0, scale, -top * scale);
        cv::Mat shown;
        cv::warpAffine(brightness, shown, place, {side, side}, cv::INTER_LINEAR,
                       cv::BORDER_REPLICATE);

        std::vector<Find> faces;
        for (Find& find : second_.find(shown)) {
            const Box box{left + find.box.x / scale, top + find.box.y / scale,
                          find.box.width / scale, find.box.height / scale};
            if (overlap(box, candidate) > agreement) faces.push_back({box, find.score});
        }
        return faces;
    }

    std::filesystem::path cascadeFile_;
    cv::CascadeClassifier cascade_;
    HogFaces second_;
};

}  // namespace

std::unique_ptr<FaceDetector> makeFaceDetector() {
    return std::make_unique<BuiltInFaceDetector>();
}

}  // namespace reference_host::vision
