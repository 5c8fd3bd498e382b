#pragma once

#include "host/results.h"

namespace KOR {

/// Returns what the faces of a frame add to its keyframe's score: 0.108 to 0.492, the more the
/// larger the largest face is and the nearer it is to the middle; 0.42 for a frame without faces.
///
/// Of equally large faces the first counts. A count beyond maxFacesPerFrame is taken as that many.
double faceScoreOfFrame(const FaceDetectFrame& frame);

}  // namespace KOR
