#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "autotrim/Kinds.h"

namespace autotrim {

/// One auto-trim record: a segment of a material, and its best keyframe.
struct Record {
    double score = 0;
    std::int64_t begin = 0;                      ///< ticks
    std::int64_t end = 0;                        ///< ticks
    std::int64_t posOfMaxScore = 0;              ///< ticks
    std::array<double, 4> faceRectOfPhoto = {};  ///< x, y, width, height; fractions
    std::optional<std::int32_t> faces;           ///< at posOfMaxScore; unset: none looked for
};

enum class MaterialType { video, photo };

/// How a file's records came about.
enum class Outcome {
    analysed,   ///< a task ran
    restored,   ///< from the cache
    byDefault,  ///< neither: a photo that is kept whole, or a video too short to analyse
    failed,     ///< there are none
};

/// What is known of one FILE in the end.
struct FileReport {
    std::string file;                      ///< as given
    std::optional<MaterialType> type;      ///< unset: unknown
    std::optional<std::int64_t> duration;  ///< ticks; unset: unknown
    Outcome outcome = Outcome::failed;
    std::string error;            ///< why it failed, in one line; otherwise empty
    std::vector<Record> results;  ///< ascending; empty when it failed
};

/// What is known of all of them: one entry per FILE, in the order given.
struct Report {
    Kinds kinds;
    std::vector<FileReport> files;
};

}  // namespace autotrim
