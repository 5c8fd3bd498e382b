#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/Ref.h"

namespace KOR {

/// One scene of the material under analysis: begin included, end excluded.
struct ScenceRange {
    std::int64_t begin;  ///< ticks
    std::int64_t end;    ///< ticks

    bool operator==(const ScenceRange&) const = default;
};

/// One keyframe of a scene with the score that it has so far.
struct KeyFrameScore {
    std::int32_t scenceIndex;  ///< the scene that holds it
    double score;              ///< 0.0 when taken in; each scoring step adds to it
    std::int64_t pos;          ///< ticks

    bool operator==(const KeyFrameScore&) const = default;
};

/// Ends a result record: gives its media reference back, then frees it.
struct EndResult {
    void operator()(MaterialAnalysisResult* result) const {
        result->media->release();
        delete result;
    }
};

/// A result record that the component owns.
using OwnedResult = std::unique_ptr<MaterialAnalysisResult, EndResult>;

/// Makes a record of `media`, on which it takes a reference, with everything else zero.
inline OwnedResult makeResult(IDmBaseMedia& media) {
    OwnedResult result(new MaterialAnalysisResult{});
    media.addRef();
    result->media = &media;
    return result;
}

}  // namespace KOR
