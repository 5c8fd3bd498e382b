#pragma once

#include <cstddef>
#include <cstdint>

#include "host/geometry.h"

namespace KOR {

/// A stretch of a source: a scene (element of analysisTypeScene). Begin is included, end is not.
struct TickRange {
    std::int64_t begin;  ///< ticks
    std::int64_t end;    ///< ticks
};

/// A frame has no more faces than this.
constexpr std::int32_t maxFacesPerFrame = 20;

/// The faces in one picture (element of analysisTypeFace).
struct FaceDetectFrame {
    std::int64_t pos;                     ///< where the picture is, ticks; 0 for a still source
    std::int32_t faceCount;               ///< 0 to maxFacesPerFrame
    std::int32_t reserved;                ///< 0
    KorRect faceRects[maxFacesPerFrame];  ///< the first faceCount count, in fractions of the
                                          ///< picture as it is shown, the largest first
};

/// How much there is to see in one picture (element of analysisTypeEntropy).
struct EntropySample {
    std::int64_t pos;  ///< where the picture is, ticks; 0 for a still source
    double entropy;    ///< of its brightness, in bits: 0 for one even area, 8 at most
};

/// How sharp one picture is (element of analysisTypeBlur).
struct BlurSample {
    std::int64_t pos;  ///< where the picture is, ticks; 0 for a still source
    double sharpness;  ///< 0 for one even area; the more blurred, the lower. See the task's maker
                       ///< for the measure: only values of the same task compare
};

static_assert(sizeof(FaceDetectFrame) == 656, "the size is part of the contract");
static_assert(offsetof(FaceDetectFrame, faceCount) == 8, "the count follows the position");
static_assert(offsetof(FaceDetectFrame, faceRects) == 16, "the rectangles follow the count");
static_assert(sizeof(EntropySample) == 16, "the size is part of the contract");
static_assert(sizeof(BlurSample) == 16, "the size is part of the contract");

}  // namespace KOR
