#pragma once

#include <cstdint>
#include <vector>

#include "host/results.h"

namespace fake_host {

/// A face with its centre at (x, y).
KOR::KorRect faceAt(double x, double y, double width, double height);

/// A face that is large for the score, and one that is not, each with its centre at (x, y).
KOR::KorRect largeFaceAt(double x, double y);
KOR::KorRect smallFaceAt(double x, double y);

/// A frame with these faces, at most 20. Behind them lie others, which do not count and would outdo
/// each one of them: the whole picture.
KOR::FaceDetectFrame frameWith(const std::vector<KOR::KorRect>& faces);

/// The same, but with another count than it has faces.
KOR::FaceDetectFrame frameCounting(std::int32_t count, const std::vector<KOR::KorRect>& faces);

/// A frame's score by its best region's score and whether its largest face is large.
double faceScoreIn(double regionScore, bool large);

/// The score of a frame without faces.
constexpr double scoreWithoutFaces = 0.42;

}  // namespace fake_host
