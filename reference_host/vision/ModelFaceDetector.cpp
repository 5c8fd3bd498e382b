#include <algorithm>
#include <cmath>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <opencv2/core/utils/logger.hpp>
#include <opencv2/dnn.hpp>
#include <opencv2/objdetect.hpp>

#include "reference_host/vision/FaceBoxes.h"
#include "reference_host/vision/FaceDetector.h"
#include "reference_host/vision/matrices.h"

namespace reference_host::vision {
namespace {

namespace fs = std::filesystem;

/// Every picture is laid into the upper left corner of a square of this side, so that a model is
/// only ever asked about the one size that it was tried on.
constexpr int squarePx = maxPictureSidePx;

/// The places at which OpenCV looks for a face in that square: in cells of 8, 16, 32 and 64 pixels,
/// with as many sizes of faces for each cell.
constexpr int placesIn(int cellPx, int sizes) {
    return (squarePx / cellPx) * (squarePx / cellPx) * sizes;
}
constexpr int places = placesIn(8, 3) + placesIn(16, 2) + placesIn(32, 2) + placesIn(64, 3);
static_assert(squarePx % 64 == 0);

/// What the model says about each place, in the order of OpenCV's rows of results: box and score.
enum Column { left, top, width, height, score = 14 };

/// Keeps OpenCV from writing to the standard error output for as long as it lives: what goes wrong
/// is told by exceptions. This is a setting of the whole process, so it is held while a model is
/// loaded only, by one thread at a time: each puts back what it has found.
class Silence {
public:
    Silence()
        : lock_(turn()),
          handler_(cv::redirectError(
              [](int, const char*, const char*, const char*, int, void*) { return 0; })),
          level_(cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT)) {}
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() {
        cv::redirectError(handler_);
        cv::utils::logging::setLogLevel(level_);
    }

private:
    static std::mutex& turn() {
        static std::mutex mutex;
        return mutex;
    }

    std::scoped_lock<std::mutex> lock_;
    cv::ErrorCallback handler_;
    cv::utils::logging::LogLevel level_;
};

[[noreturn]] void refuse(const fs::path& model, const std::string& reason) {
    throw std::runtime_error("the face model " + model.string() + " " + reason);
}

void refuseUnlessRegular(const fs::path& model) {
    std::error_code error;
    const fs::file_status status = fs::status(model, error);
    if (!fs::exists(status)) refuse(model, "does not exist");
    if (!fs::is_regular_file(status)) refuse(model, "is no regular file");
    const std::uintmax_t size = fs::file_size(model, error);
    if (error) refuse(model, "cannot be read: " + error.message());
    if (size == 0) refuse(model, "is empty");
}

/// Tells whether the model, tried on an even picture, gives as many values as OpenCV's detector
/// takes from it, which does not count them itself.
bool answersForAllPlaces(const std::string& model) {
    cv::dnn::Net net = cv::dnn::readNetFromONNX(model);
    const cv::Mat even(squarePx, squarePx, CV_8UC3, cv::Scalar::all(0));
    net.setInput(cv::dnn::blobFromImage(even));
    std::vector<cv::Mat> outputs;
    net.forward(outputs, std::vector<cv::String>{"loc", "conf", "iou"});
    const std::vector<std::size_t> valuesForPlace{14, 2, 1};
    for (std::size_t output = 0; output < outputs.size(); ++output) {
        const cv::Mat& values = outputs[output];
        if (values.type() != CV_32F || values.total() != places * valuesForPlace[output])
            return false;
    }
    return outputs.size() == valuesForPlace.size();
}

cv::Ptr<cv::FaceDetectorYN> loaded(const fs::path& model) {
    refuseUnlessRegular(model);
    const Silence silence;
    try {
        if (answersForAllPlaces(model.string()))
            return cv::FaceDetectorYN::create(model.string(), "", {squarePx, squarePx});
    } catch (const std::exception&) {
        // Whatever OpenCV stumbled over in the file, the reason is the same to who gave it.
    }
    refuse(model, "is no ONNX model for OpenCV's FaceDetectorYN");
}

class ModelFaceDetector final : public FaceDetector {
public:
    explicit ModelFaceDetector(const fs::path& model) : detector_(loaded(model)) {}

    std::vector<KOR::KorRect> detect(const Picture& picture) override try {
        square_.setTo(cv::Scalar::all(0));
        colourMatrix(picture).copyTo(square_({0, 0, picture.widthPx, picture.heightPx}));
        cv::Mat rows;
        detector_->detect(square_, rows);
        std::vector<Find> finds;
        for (int row = 0; row < rows.rows; ++row) {
            const auto* values = rows.ptr<float>(row);
            // What is no number could not be put in order.
            if (!std::all_of(values, values + height + 1,
                             [](float side) { return std::isfinite(side); }))
                continue;
            finds.push_back(
                {{values[left], values[top], values[width], values[height]}, values[score]});
        }
        return faceRects(withoutDuplicates(std::move(finds)), picture.widthPx, picture.heightPx);
    } catch (const cv::Exception& error) {
        throw std::runtime_error("looking for faces by the model failed: " + error.err);
    }

private:
    cv::Ptr<cv::FaceDetectorYN> detector_;
    cv::Mat square_ = cv::Mat(squarePx, squarePx, CV_8UC3);
};

}  // namespace

std::unique_ptr<FaceDetector> makeFaceDetector(const fs::path& model) {
    return std::make_unique<ModelFaceDetector>(model);
}

}  // namespace reference_host::vision
