#include "autotrim/Kinds.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace autotrim {
namespace {

std::int32_t parseKind(std::string_view part) {
    std::int32_t kind = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), kind);
    if (error == std::errc::result_out_of_range) {
        throw std::invalid_argument(std::string(part) + " is no kind of analysis: they are 1 to 7");
    }
    if (error != std::errc() || end != part.data() + part.size()) {
        throw std::invalid_argument("\"" + std::string(part) + "\" is not a whole number");
    }
    return kind;
}

/// Returns the first kind whose result is keyframes inside scenes, or the end.
Kinds::const_iterator firstKeyFramesInScenes(const Kinds& kinds) {
    bool haveScenes = false;
    return std::find_if(kinds.begin(), kinds.end(), [&haveScenes](std::int32_t kind) {
        if (kind == KOR::analysisKindScence) haveScenes = true;
        return kind == KOR::analysisKindScenceAndKeyFrame ||
               (kind == KOR::analysisKindKeyFrame && haveScenes);
    });
}

bool needsKeyFrames(std::int32_t kind) {
    return kind == KOR::analysisKindFace || kind == KOR::analysisKindKeyFrame ||
           kind == KOR::analysisKindEntropy || kind == KOR::analysisKindFaceAndEntropy;
}

}  // namespace

Kinds parseKinds(std::string_view text) {
    Kinds kinds;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        kinds.push_back(parseKind(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    return kinds;
}

std::string whyUnusable(const Kinds& kinds) {
    for (const std::int32_t kind : kinds) {
        if (kind < KOR::analysisKindFace || kind > KOR::analysisKindFaceAndEntropy) {
            return std::to_string(kind) + " is no kind of analysis: they are 1 to 7";
        }
    }
    if (kinds.size() < 2) {
        return "a single kind gives no records: list at least two";
    }
    const auto producer = firstKeyFramesInScenes(kinds);
    if (producer == kinds.end()) {
        return "nothing finds keyframes inside scenes: list 6, or 3 after 4";
    }
    const auto tooEarly = std::find_if(kinds.begin(), producer, needsKeyFrames);
    if (tooEarly == producer) return {};
    return std::to_string(*tooEarly) +
           " stands before the keyframes that it needs: list it after 6, or after 3 that follows 4";
}

}  // namespace autotrim
