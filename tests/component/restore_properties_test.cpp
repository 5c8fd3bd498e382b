#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

#include "fake_host/paths.h"
#include "fake_host/text.h"
#include "tests/component/PropertyCase.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using Records = std::vector<KOR::MaterialAnalysisResult>;
using Limits = std::numeric_limits<double>;

/// Any 64 bits, from the first case on; left alone, generators begin with small numbers.
std::uint64_t anyBits() {
    return *rc::gen::resize(rc::kNominalSize, rc::gen::arbitrary<std::uint64_t>());
}

/// Any finite double, by its bits; often one of the tiny ones, and a few that are special.
double anyFiniteDouble() {
    const std::uint64_t bits = anyBits();
    const std::uint64_t onlySignAndMantissa = 0x800FFFFFFFFFFFFF;
    switch (*rc::gen::inRange(0, 5)) {
        case 0:
            return std::bit_cast<double>(bits & onlySignAndMantissa);
        case 1:
            return *rc::gen::element(0.0, -0.0, Limits::max(), Limits::lowest(), Limits::min(),
                                     Limits::denorm_min(), -Limits::denorm_min(), 0.1, 1e23);
        case 2:
            return static_cast<double>(static_cast<std::int64_t>(bits));
        default: {
            const auto value = std::bit_cast<double>(bits);
            return std::isfinite(value) ? value : 0.5;
        }
    }
}

double anyNonFiniteDouble() {
    return *rc::gen::element(Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(),
                             -Limits::infinity());
}

std::int64_t anyInteger() {
    const auto bits = static_cast<std::int64_t>(anyBits());
    return *rc::gen::element(bits, bits >> 32, std::int64_t{0},
                             std::numeric_limits<std::int64_t>::min(),
                             std::numeric_limits<std::int64_t>::max());
}

/// Any double that a coordinate may be; often one about as large as coordinates are.
double anyCoordinate() {
    const double unit = *rc::gen::inRange(-3000000, 3000000) * 1e-6;
    return *rc::gen::element(unit, unit * 4000, unit * 1e9, std::nextafter(unit, 10),
                             std::nextafter(1.0, 0.0), anyFiniteDouble());
}

KOR::MaterialAnalysisResult anyRecord() {
    return {
        anyFiniteDouble(), anyInteger(),
        anyInteger(),      anyInteger(),
        nullptr,           {anyCoordinate(), anyCoordinate(), anyCoordinate(), anyCoordinate()}};
}

Records anyRecords(int least = 0) {
    Records records;
    for (int i = *rc::gen::inRange(least, 8); i > 0; --i)
        records.push_back(anyRecord());
    return records;
}

/// What a run is set to as far as the file tells.
struct Settings {
    std::vector<std::int32_t> kinds = *rc::gen::arbitrary<std::vector<std::int32_t>>();
    std::int64_t minimum = anyInteger();
    double threshold = anyFiniteDouble();

    void giveTo(Case& run) const {
        run.probe().setAnalysisKindsOnly(kinds);
        run.probe().minScenceDuration() = minimum;
        run.probe().scenceDetectionThreshold() = threshold;
    }
};

/// A directory that outlives the host of one case, with one material's result file.
class Directory {
public:
    Directory() { std::filesystem::create_directory(path_ / "analysis"); }
    ~Directory() { std::filesystem::remove_all(path_); }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    std::filesystem::path file() const { return path_ / "analysis" / "result.json"; }
    std::string content() const { return contentOf(file()); }

    void put(const std::string& text) const { std::ofstream(file(), std::ios::binary) << text; }

    /// Writes the records from a component with these settings.
    void save(const Settings& settings, const Records& records) const {
        Case run;
        settings.giveTo(run);
        std::vector<const KOR::MaterialAnalysisResult*> pointers;
        for (const auto& one : records)
            pointers.push_back(&one);
        FakeMedia& material = run.make(video("clip.mp4", 1).cacheIn(path_));
        RC_ASSERT(run.probe().saveMaterialAnalysisResult(&material, pointers));
    }

    struct Restored {
        bool taken;
        Records records;
    };

    /// Restores the file in a component of its own with these settings, and checks what holds for
    /// every file: it is taken and left as it is, or refused and deleted and gives nothing.
    Restored restore(const Settings& settings) const {
        const std::string before = content();
        Case run;
        settings.giveTo(run);
        FakeMedia& material = run.make(video("clip.mp4", 1).cacheIn(path_));
        const bool taken = run.probe().restoreMaterialAnalysisResult(&material);
        const Records records = run.probe().results();
        RC_ASSERT(std::filesystem::exists(file()) == taken);
        if (taken) RC_ASSERT(content() == before);
        if (!taken) RC_ASSERT(records.empty());
        RC_ASSERT(material.refCount() == records.size() + 1);
        for (const auto& record : records)
            RC_ASSERT(record.media == &material);
        return {taken, records};
    }

private:
    const std::filesystem::path path_ = makeTemporaryDirectory();
};

std::uint64_t bitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// What is left of a coordinate: rounded to the six decimals that are written, cut to its whole
/// part, and that to 32 bits.
double wholeOf(double coordinate) {
    std::array<char, 400> decimal{};
    const auto end = std::to_chars(decimal.data(), decimal.data() + decimal.size(), coordinate,
                                   std::chars_format::fixed, 6);
    double written = 0;
    std::from_chars(decimal.data(), end.ptr, written);
    const double lowest = std::numeric_limits<std::int32_t>::min();
    const double highest = std::numeric_limits<std::int32_t>::max();
    return std::clamp(std::trunc(written), lowest, highest) + 0.0;
}

RC_GTEST_PROP(RestoreProperty, GivesBackEveryBit, ()) {
    const Directory directory;
    const Settings settings;
    const Records written = anyRecords();
    directory.save(settings, written);
    const auto [taken, read] = directory.restore(settings);
    RC_ASSERT(taken);
    RC_ASSERT(read.size() == written.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        RC_ASSERT(bitsOf(read[i].score) == bitsOf(written[i].score));
        RC_ASSERT(read[i].begin == written[i].begin);
        RC_ASSERT(read[i].end == written[i].end);
        RC_ASSERT(read[i].posOfMaxScore == written[i].posOfMaxScore);
        const KOR::KorRect& from = written[i].faceRectOfPhoto;
        const KOR::KorRect& to = read[i].faceRectOfPhoto;
        RC_ASSERT(bitsOf(to.x) == bitsOf(wholeOf(from.x)));
        RC_ASSERT(bitsOf(to.y) == bitsOf(wholeOf(from.y)));
        RC_ASSERT(bitsOf(to.width) == bitsOf(wholeOf(from.width)));
        RC_ASSERT(bitsOf(to.height) == bitsOf(wholeOf(from.height)));
    }
}

RC_GTEST_PROP(RestoreProperty, RefusesNonFiniteNumbers, ()) {
    const Directory directory;
    Settings settings;
    Records records = anyRecords(1);
    if (*rc::gen::arbitrary<bool>()) {
        settings.threshold = anyNonFiniteDouble();
    } else {
        records[*rc::gen::inRange<std::size_t>(0, records.size())].score = anyNonFiniteDouble();
    }
    directory.save(settings, records);
    RC_ASSERT(!directory.restore(settings).taken);
}

RC_GTEST_PROP(RestoreProperty, RefusesOtherSettings, ()) {
    const Directory directory;
    const Settings settings;
    directory.save(settings, anyRecords());
    Settings others = settings;
    switch (*rc::gen::inRange(0, 3)) {
        case 0:
            others.kinds.push_back(*rc::gen::arbitrary<std::int32_t>());
            break;
        case 1:
            others.minimum ^= 1LL << *rc::gen::inRange(0, 63);
            break;
        default:
            others.threshold =
                settings.threshold < 0 ? settings.threshold / 4 + 1 : settings.threshold / 4 - 1;
    }
    RC_ASSERT(!directory.restore(others).taken);
}

RC_GTEST_PROP(RestoreProperty, RefusesEveryBeginning, ()) {
    const Directory directory;
    const Settings settings;
    directory.save(settings, anyRecords());
    const std::string whole = directory.content();
    directory.put(whole.substr(0, *rc::gen::inRange<std::size_t>(0, whole.size())));
    RC_ASSERT(!directory.restore(settings).taken);
}

RC_GTEST_PROP(RestoreProperty, RefusesRandomBytes, ()) {
    const Directory directory;
    directory.put(*rc::gen::arbitrary<std::string>());
    RC_ASSERT(!directory.restore(Settings()).taken);
}

/// Changes the text at a random place.
void mutate(std::string& text) {
    const auto at = *rc::gen::inRange<std::size_t>(0, text.size() + 1);
    const auto length = *rc::gen::inRange<std::size_t>(0, 30);
    const std::string piece = *rc::gen::element<std::string>(
        "", "0", "9", "-", ".", "e9", "1e999", "\"", "\\", "\\u0000", ",", ":", "[", "]", "{", "}",
        "[]", "{}", "null", "true", " ", "\n", std::string(1, '\0'), "\x7f", "1.5", "\"x\"");
    switch (*rc::gen::inRange(0, 3)) {
        case 0:
            text.insert(at, piece);
            break;
        case 1:
            text.replace(at, piece.size(), piece);
            break;
        default:
            text.erase(at, length);
    }
}

// A parser of another make says how many elements there are in a text that was taken.
RC_GTEST_PROP(RestoreProperty, OfChangedFilesGivesOneRecordForEachElement, ()) {
    const Directory directory;
    const Settings settings;
    directory.save(settings, anyRecords());
    std::string text = directory.content();
    for (int i = *rc::gen::inRange(1, 4); i > 0; --i)
        mutate(text);
    directory.put(text);
    const auto [taken, records] = directory.restore(settings);
    RC_CLASSIFY(taken, "taken");
    if (!taken) return;
    const auto root = nlohmann::json::parse(text);
    const std::size_t elements = root.contains("result") ? root.at("result").size() : 0;
    RC_ASSERT(records.size() == elements);
}

}  // namespace
}  // namespace fake_host
