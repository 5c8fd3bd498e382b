#include "modules/BusinessLayer/MaterialAnalysis/ResultCacheReader.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>

#include "host/files.h"
#include "modules/BusinessLayer/MaterialAnalysis/JsonDocument.h"

namespace KOR {

namespace {

using Value = JsonValue;

constexpr const char* invalid = "cache result invalidate";

/// Thresholds that differ by no more than this count as equal.
constexpr double thresholdTolerance = 0.001;

/// More than there are in any written file of the longest size that is read. An element can be as
/// short as "{}", and its record takes many times that.
constexpr rapidjson::SizeType mostResults = 1 << 19;

/// Returns the member of that name, or null.
const Value* memberOf(const Value& object, const char* name) {
    const auto found = object.FindMember(name);
    return found == object.MemberEnd() ? nullptr : &found->value;
}

std::string textOf(const Value& string) {
    return {string.GetString(), string.GetStringLength()};
}

const char* rejectVersion(const Value* version, const std::string& expected) {
    if (version == nullptr) return "No version";
    if (!version->IsString()) return invalid;
    return textOf(*version) == expected ? nullptr : "version changed";
}

const char* rejectKinds(const Value* kinds, const std::vector<std::int32_t>& expected) {
    if (kinds == nullptr) return "No analysisTypes";
    if (!kinds->IsString()) return invalid;
    return textOf(*kinds) == joinedKinds(expected) ? nullptr : "analysisTypes changed";
}

const char* rejectMinimum(const Value* minimum, std::int64_t expected) {
    if (minimum == nullptr) return "No minScenceDuration";
    if (!minimum->IsNumber()) return invalid;
    const bool isEqual = minimum->IsInt64() && minimum->GetInt64() == expected;
    return isEqual ? nullptr : "minScenceDuration changed";
}

const char* rejectThreshold(const Value* threshold, double expected) {
    if (threshold == nullptr) return "No scenceDetectionThreshold";
    if (!threshold->IsNumber()) return invalid;
    // Asked this way round, a threshold that is not a number agrees with all others.
    const bool isOff = std::abs(threshold->GetDouble() - expected) > thresholdTolerance;
    return isOff ? "scenceDetectionThreshold changed" : nullptr;
}

/// Returns why the header of `root` does not agree with the one expected, or null.
const char* rejectHeader(const Value& root, const ResultCacheHeader& expected) {
    const char* why = rejectVersion(memberOf(root, "version"), expected.version);
    if (why == nullptr) why = rejectKinds(memberOf(root, "analysisTypes"), expected.analysisKinds);
    if (why == nullptr) {
        why = rejectMinimum(memberOf(root, "minScenceDuration"), expected.minScenceDuration);
    }
    if (why == nullptr) {
        why = rejectThreshold(memberOf(root, "scenceDetectionThreshold"),
                              expected.scenceDetectionThreshold);
    }
    return why;
}

/// Takes a member of a record over, if it is there. False when it is of another type.
bool take(const Value* member, double& into) {
    if (member == nullptr) return true;
    if (!member->IsNumber()) return false;
    into = member->GetDouble();
    return true;
}

bool take(const Value* member, std::int64_t& into) {
    if (member == nullptr) return true;
    if (!member->IsInt64()) return false;
    into = member->GetInt64();
    return true;
}

/// The whole number that `text` begins with, toward zero, 0 where there is none. Beyond 32 bits it
/// is the nearest that fits.
double wholeNumberOf(const std::string& text) {
    using Limits = std::numeric_limits<std::int32_t>;
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<double>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

/// Returns the first four parts of a text with "," between them. Only these count: millions may
/// stand behind.
std::string firstFourParts(std::string text) {
    std::size_t end = text.find(',');
    for (int part = 1; part < 4 && end != std::string::npos; ++part)
        end = text.find(',', end + 1);
    if (end != std::string::npos) text.resize(end);
    return text;
}

bool take(const Value* member, KorRect& into) {
    if (member == nullptr) return true;
    if (!member->IsString()) return false;
    const std::vector<std::string> parts = StringUtil::split(firstFourParts(textOf(*member)), ',');
    if (parts.size() < 4) return true;
    into = {wholeNumberOf(parts[0]), wholeNumberOf(parts[1]), wholeNumberOf(parts[2]),
            wholeNumberOf(parts[3])};
    return true;
}

/// Takes the members of a record over. False when it is none.
bool take(const Value& element, MaterialAnalysisResult& into) {
    return element.IsObject() && take(memberOf(element, "score"), into.score) &&
           take(memberOf(element, "begin"), into.begin) &&
           take(memberOf(element, "end"), into.end) &&
           take(memberOf(element, "posOfMaxScore"), into.posOfMaxScore) &&
           take(memberOf(element, "faceRectOfPhoto"), into.faceRectOfPhoto);
}

ResultCacheReading readResults(const Value* list) {
    if (list == nullptr) return {};
    if (!list->IsArray() || list->Size() > mostResults) {
        return {.rejection = invalid, .results = {}};
    }
    ResultCacheReading reading;
    reading.results.reserve(list->Size());
    for (const Value& element : list->GetArray()) {
        if (!take(element, reading.results.emplace_back())) {
            return {.rejection = invalid, .results = {}};
        }
    }
    return reading;
}

}  // namespace

ResultCacheReading readResultCache(const std::string& text, const ResultCacheHeader& expected) {
    const std::optional<JsonDocument> root = parseJson(text);
    if (!root || !root->IsObject()) return {.rejection = invalid, .results = {}};
    if (const char* const why = rejectHeader(*root, expected)) {
        return {.rejection = why, .results = {}};
    }
    return readResults(memberOf(*root, "result"));
}

}  // namespace KOR
