#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "reference_host/vision/CascadeFaces.h"
#include "reference_host/vision/FaceBoxes.h"
#include "reference_host/vision/FaceDetector.h"
#include "reference_host/vision/HogFaces.h"
#include "reference_host/vision/matrices.h"

namespace reference_host::vision {
namespace {

/// Smaller faces have too few pixels to be told from chance.
constexpr int smallestCandidatePx = 30;

/// A cascade answers in many windows around a face and around much else; those that nothing beside
/// them agrees with are chance. It need not be more, since no cascade decides alone.
constexpr int neighbours = 1;

/// The size to which a candidate is scaled before it is examined: larger than the smallest face
/// that can be confirmed, since a face is often found smaller than its candidate.
constexpr int examinedPx = HogFaces::smallestPx * 5 / 4;

/// How much of the picture is examined with a candidate, in sizes of the candidate: room for the
/// outlines of the head, not for a second face.
constexpr double examinedPart = 1.8;

/// Smooths the noise, which scaling up has made as large as the features of a face. In pixels.
constexpr double smoothing = 1;

/// A candidate and a face found in its surroundings are the same from this overlap on: detectors
/// draw their boxes differently.
constexpr double sameFaceOverlap = 0.3;

/// What the second detector scores beyond this is a face. Most faces score 1 to 2.
constexpr double surely = 0.7;

/// From here to `surely` a third detector decides: tilted, dark and blurred faces score so low, and
/// so do the faces of drawn animals. Lower, little is found but hands and folds.
constexpr double perhaps = -0.2;

/// The part of a picture around a candidate, scaled so that all candidates have the same size.
struct Examined {
    cv::Mat picture;
    cv::Point corner;
    double scale = 1;
};

Examined surroundings(const Box& candidate, const cv::Mat& brightness) {
    const auto side = static_cast<int>(std::lround(candidate.width * examinedPart));
    const cv::Point corner(
        static_cast<int>(std::lround(candidate.x + (candidate.width - side) / 2)),
        static_cast<int>(std::lround(candidate.y + (candidate.height - side) / 2)));
    const cv::Rect area(corner, cv::Size(side, side));
    const cv::Rect inside = area & cv::Rect(cv::Point(), brightness.size());

    cv::Mat part;
    cv::copyMakeBorder(brightness(inside), part, inside.y - area.y, area.br().y - inside.br().y,
                       inside.x - area.x, area.br().x - inside.br().x, cv::BORDER_REPLICATE);
    const auto examinedSide = static_cast<int>(examinedPx * examinedPart);
    cv::resize(part, part, {examinedSide, examinedSide}, 0, 0,
               side > examinedSide ? cv::INTER_AREA : cv::INTER_LINEAR);
    cv::GaussianBlur(part, part, {}, smoothing);
    return {part, corner, static_cast<double>(examinedSide) / side};
}

/// Three detectors of different kinds. The first, a fast cascade, proposes candidates; the second,
/// by histograms of directions, confirms; where it is not sure, the third, another cascade, has to
/// agree.
class BuiltInFaceDetector final : public FaceDetector {
public:
    std::vector<KOR::KorRect> detect(const Picture& picture) override try {
        const cv::Mat brightness = brightnessMatrix(picture);
        std::vector<Find> faces;
        for (const Box& candidate : first_.find(brightness, smallestCandidatePx, neighbours)) {
            const std::vector<Find> found = confirmed(candidate, brightness);
            faces.insert(faces.end(), found.begin(), found.end());
        }
        return faceRects(withoutDuplicates(std::move(faces)), picture.widthPx, picture.heightPx);
    } catch (const cv::Exception& error) {
        throw std::runtime_error("looking for faces failed: " + error.err);
    }

private:
    std::vector<Find> confirmed(const Box& candidate, const cv::Mat& brightness) {
        const Examined examined = surroundings(candidate, brightness);
        std::vector<Find> faces;
        for (const Find& find : second_.find(examined.picture, perhaps)) {
            const Box face{examined.corner.x + find.box.x / examined.scale,
                           examined.corner.y + find.box.y / examined.scale,
                           find.box.width / examined.scale, find.box.height / examined.scale};
            if (overlap(face, candidate) < sameFaceOverlap) continue;
            if (find.score >= surely || thirdAgrees(find.box, examined.picture))
                faces.push_back({face, find.score});
        }
        return faces;
    }

    bool thirdAgrees(const Box& face, const cv::Mat& picture) {
        const std::vector<Box> places = third_.find(picture, examinedPx / 2, neighbours);
        return std::any_of(places.begin(), places.end(), [&face](const Box& place) {
            return overlap(place, face) >= sameFaceOverlap;
        });
    }

    CascadeFaces first_{"lbpcascades/lbpcascade_frontalface.xml"};
    HogFaces second_;
    CascadeFaces third_{"lbpcascades/lbpcascade_frontalface_improved.xml"};
};

}  // namespace

std::unique_ptr<FaceDetector> makeFaceDetector() {
    return std::make_unique<BuiltInFaceDetector>();
}

}  // namespace reference_host::vision
