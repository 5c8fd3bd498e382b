#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "host/geometry.h"
#include "reference_host/vision/Picture.h"

namespace reference_host::vision {

/// Finds faces in pictures. Belongs to one thread at a time.
class FaceDetector {
public:
    virtual ~FaceDetector() = default;

    /// Returns the faces of `picture` in fractions of its sides, inside it, the largest first, at
    /// most KOR::maxFacesPerFrame.
    virtual std::vector<KOR::KorRect> detect(const Picture& picture) = 0;
};

/// Makes the detector that needs no model of the user's. Throws std::runtime_error, which says what
/// is missing.
std::unique_ptr<FaceDetector> makeFaceDetector();

/// Makes a detector by a model for OpenCV's FaceDetectorYN (ONNX). Throws std::runtime_error, which
/// names the file, where it cannot be read or is none.
std::unique_ptr<FaceDetector> makeFaceDetector(const std::filesystem::path& model);

}  // namespace reference_host::vision
