// Writes records under some settings, changes the file or the settings, and restores.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "tests/fuzz/ByteReader.h"
#include "tests/fuzz/RestoreRig.h"

namespace fuzz {
namespace {

Settings takeSettings(ByteReader& bytes) {
    Settings settings;
    settings.kinds.resize(bytes.takeBelow(5));
    for (std::int32_t& kind : settings.kinds)
        kind = bytes.take<std::int32_t>();
    settings.minScenceDuration = bytes.take<std::int64_t>();
    settings.scenceDetectionThreshold = bytes.take<double>();
    return settings;
}

Records takeRecords(ByteReader& bytes) {
    Records records(bytes.takeBelow(6));
    for (KOR::MaterialAnalysisResult& record : records) {
        record = {bytes.take<double>(),
                  bytes.take<std::int64_t>(),
                  bytes.take<std::int64_t>(),
                  bytes.take<std::int64_t>(),
                  nullptr,
                  bytes.take<KOR::KorRect>()};
    }
    return records;
}

/// Whether the writer can put every number into its text.
bool isWritable(const Settings& settings, const Records& records) {
    return std::isfinite(settings.scenceDetectionThreshold) &&
           std::all_of(records.begin(), records.end(),
                       [](const auto& record) { return std::isfinite(record.score); });
}

/// What is left of a rectangle's value: the whole number, toward zero, of its six decimals.
double restoredValue(double value) {
    if (!std::isfinite(value)) return 0;
    char text[400];
    std::snprintf(text, sizeof text, "%f", value);
    return std::clamp(std::trunc(std::strtod(text, nullptr)), -2147483648.0, 2147483647.0) + 0.0;
}

Records restoredForm(Records records) {
    for (KOR::MaterialAnalysisResult& record : records) {
        const KOR::KorRect& face = record.faceRectOfPhoto;
        record.faceRectOfPhoto = {restoredValue(face.x), restoredValue(face.y),
                                  restoredValue(face.width), restoredValue(face.height)};
    }
    return records;
}

/// One change of a text that is not empty, anywhere in it.
void mutate(std::string& text, ByteReader& bytes) {
    const std::size_t at = bytes.takeBelow(text.size());
    const std::size_t length = bytes.takeBelow(text.size() - at) + 1;
    switch (bytes.take<std::uint8_t>() % 4) {
        case 0:
            text[at] = bytes.take<char>();
            break;
        case 1:
            text.insert(at, 1, bytes.take<char>());
            break;
        case 2:
            text.erase(at, length);
            break;
        default:
            text.insert(at, text.substr(at, length));
            break;
    }
}

void restoreAsWritten(RestoreRig& rig, const Settings& settings, const Records& written) {
    const std::optional<Records> restored = rig.restore();
    if (!isWritable(settings, written)) {
        require(!restored, "a text without a number where one belongs is rejected");
        return;
    }
    require(restored.has_value(), "a file as it was written is taken");
    require(areSame(*restored, restoredForm(written)), "the records are those that were written");
}

void restorePrefix(RestoreRig& rig, const std::string& text, ByteReader& bytes) {
    rig.write(text.substr(0, bytes.takeBelow(text.size())));
    require(!rig.restore(), "a file that is cut short is rejected");
}

void restoreMutated(RestoreRig& rig, std::string text, ByteReader& bytes) {
    const std::size_t changes = bytes.takeBelow(4) + 1;
    for (std::size_t i = 0; i < changes && !text.empty(); ++i)
        mutate(text, bytes);
    rig.write(text);
    rig.restore();
}

void restoreUnderOtherSettings(RestoreRig& rig, const Settings& settings, ByteReader& bytes) {
    const Settings other = takeSettings(bytes);
    rig.use(other);
    const bool areEqual =
        other.kinds == settings.kinds && other.minScenceDuration == settings.minScenceDuration &&
        !(std::abs(settings.scenceDetectionThreshold - other.scenceDetectionThreshold) > 0.001);
    require(rig.restore().has_value() <= areEqual, "a file of other settings is rejected");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fuzz;
    ByteReader bytes(data, size);
    const auto way = bytes.take<std::uint8_t>() % 4;
    const Settings settings = takeSettings(bytes);
    const Records records = takeRecords(bytes);
    RestoreRig rig(settings);
    const std::string text = rig.save(records);
    switch (way) {
        case 0:
            restoreAsWritten(rig, settings, records);
            break;
        case 1:
            restorePrefix(rig, text, bytes);
            break;
        case 2:
            restoreMutated(rig, text, bytes);
            break;
        default:
            restoreUnderOtherSettings(rig, settings, bytes);
            break;
    }
    return 0;
}
