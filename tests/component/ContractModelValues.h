#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "fake_host/FakeMedia.h"

namespace fake_host {

// What the model computes from single values.

/// The host task types of a kind of analysis; none for an unknown one.
std::vector<std::int32_t> taskTypes(std::int32_t kind);

/// The function and the text of the line that a kind's start writes.
std::pair<std::string, std::string> startLine(std::int32_t kind);

bool isStill(const MediaSpec& media);

/// A material's length in ticks, of which a still one without any has 1.
std::int64_t durationOf(const MediaSpec& media);

double faceScoreOf(const KOR::FaceDetectFrame& frame);

/// With six decimals, and with six significant digits.
std::string fixedSix(double value);
std::string general(double value);

}  // namespace fake_host
