#include "tests/component/ContractModelValues.h"

#include <cstdio>
#include <map>

namespace fake_host {
namespace {

std::string printed(const char* format, double value) {
    const int length = std::snprintf(nullptr, 0, format, value);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::snprintf(text.data(), text.size(), format, value);
    text.pop_back();
    return text;
}

bool contains(double left, double top, double width, double height, double x, double y) {
    return left <= x && x <= left + width && top <= y && y <= top + height;
}

}  // namespace

std::vector<std::int32_t> taskTypes(std::int32_t kind) {
    const std::map<std::int32_t, std::vector<std::int32_t>> types = {
        {1, {3}}, {2, {2}}, {3, {9}}, {4, {1}}, {5, {8}}, {6, {1, 9}}, {7, {3, 8}}};
    const auto found = types.find(kind);
    return found == types.end() ? std::vector<std::int32_t>() : found->second;
}

std::pair<std::string, std::string> startLine(std::int32_t kind) {
    const std::map<std::int32_t, std::pair<std::string, std::string>> lines = {
        {1, {"startFaceDetect", "----Start Face Detect---素材idx: "}},
        {2, {"startBlurDetect", "----Start Blur Detect---素材idx: "}},
        {3, {"startKeyFrameDetect", "----Start Keyframe Extract---素材idx: "}},
        {4, {"startScenceDetect", "----Start Scence Detect:---素材idx---"}},
        {5, {"startEntropyCalculate", "----Start Entropy Value---素材idx: "}},
        {6,
         {"startScenceAndKeyframeDetect",
          "----Start Scence Detect and keyframe extrackt:---素材idx---"}},
        {7,
         {"startFaceAndEntropyAnalysis", "----Start Face detect and Entropy Value---素材idx: "}}};
    return lines.at(kind);
}

bool isStill(const MediaSpec& media) {
    return media.mediaType != 8 && media.mediaType != 2 && media.mediaType != 0x40000;
}

std::int64_t durationOf(const MediaSpec& media) {
    const bool hasSource = media.isSourceMedia && media.hasSource;
    const std::int64_t ownLength = hasSource ? media.mediaLengthTicks : 0;
    return isStill(media) && ownLength <= 0 ? 1 : media.durationTicks;
}

double faceScoreOf(const KOR::FaceDetectFrame& frame) {
    if (frame.faceCount <= 0) return 0.42;
    KOR::KorRect chosen{0, 0, 0, 0};
    for (std::int32_t i = 0; i < frame.faceCount; ++i) {
        const KOR::KorRect& face = frame.faceRects[i];
        if (face.width * face.height > chosen.width * chosen.height) chosen = face;
    }
    const double x = chosen.x + chosen.width / 2;
    const double y = chosen.y + chosen.height / 2;
    const double size = chosen.height * chosen.width >= 0.01 ? 0.7 : 0.3;
    double region = 0;
    if (contains(0.2, 0.0, 0.8, 0.9, x, y)) {
        region = 0.9;
    } else if (contains(0.1, 0.0, 0.1, 0.9, x, y)) {
        region = 0.3;
    } else if (contains(0.0, 0.0, 0.1, 0.9, x, y) || contains(0.0, 0.9, 1.0, 0.1, x, y)) {
        region = 0.1;
    } else {
        return 0.42;
    }
    return (region * 0.6 + size * 0.4) * 0.6;
}

std::string fixedSix(double value) {
    return printed("%f", value);
}

std::string general(double value) {
    return printed("%g", value);
}

}  // namespace fake_host
