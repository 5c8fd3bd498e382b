#include "fake_host/faces.h"

#include <algorithm>
#include <iterator>

namespace fake_host {

KOR::KorRect faceAt(double x, double y, double width, double height) {
    return {x - width / 2, y - height / 2, width, height};
}

// Sides that are powers of two leave no rounding in the way from a centre to a corner and back.

KOR::KorRect largeFaceAt(double x, double y) {
    return faceAt(x, y, 0.125, 0.125);
}

KOR::KorRect smallFaceAt(double x, double y) {
    return faceAt(x, y, 0.0625, 0.0625);
}

KOR::FaceDetectFrame frameWith(const std::vector<KOR::KorRect>& faces) {
    return frameCounting(static_cast<std::int32_t>(faces.size()), faces);
}

KOR::FaceDetectFrame frameCounting(std::int32_t count, const std::vector<KOR::KorRect>& faces) {
    KOR::FaceDetectFrame frame{};
    frame.pos = -1;
    frame.faceCount = count;
    std::fill(std::begin(frame.faceRects), std::end(frame.faceRects), KOR::KorRect{0, 0, 1, 1});
    std::copy(faces.begin(), faces.end(), std::begin(frame.faceRects));
    return frame;
}

double faceScoreIn(double regionScore, bool large) {
    const double sizeFactor = large ? 0.7 : 0.3;
    return (regionScore * 0.6 + sizeFactor * 0.4) * 0.6;
}

}  // namespace fake_host
