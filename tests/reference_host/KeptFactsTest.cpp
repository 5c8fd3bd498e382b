#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

#include "reference_host/cache/KeptFacts.h"
#include "reference_host/media/Limits.h"

namespace reference_host_tests {
namespace {

using reference_host::cache::KeptFacts;
using reference_host::cache::keptFactsText;
using reference_host::cache::parseKeptFacts;
using Json = nlohmann::ordered_json;

KeptFacts video() {
    KeptFacts facts;
    facts.madeBy = "libavformat 59.27.100";
    facts.file = "/clips/a \"b\"\n.mp4";
    facts.footage = {.isVideo = true,
                     .durationTicks = 52000000,
                     .originTimestamp = -512,
                     .lastTimestamp = 66048,
                     .keyTimestamps = {-512, 0, 25600},
                     .warnings = {"damaged: the file ends before its last frame"}};
    facts.analysisWarnings = {"damaged: 1 of 9 frames could not be decoded whole"};
    facts.faceCounts = {{0, 2}, {4000000, 0}, {8000000, 20}};
    return facts;
}

KeptFacts photo() {
    KeptFacts facts;
    facts.madeBy = "libheif 1.15.1";
    facts.file = "/clips/a.heic";
    return facts;
}

/// The facts of video() with one member replaced.
std::string with(const std::string& member, const Json& value) {
    Json json = Json::parse(keptFactsText(video()));
    json[member] = value;
    return json.dump();
}

TEST(KeptFacts, AreJsonOfPlainMembers) {
    const Json json = Json::parse(keptFactsText(video()));
    std::vector<std::string> names;
    for (const auto& [name, value] : json.items())
        names.push_back(name);
    EXPECT_EQ(names,
              (std::vector<std::string>{"format", "madeBy", "file", "isVideo", "durationTicks",
                                        "originTimestamp", "lastTimestamp", "keyTimestamps",
                                        "warnings", "analysisWarnings", "faceCounts"}));
    EXPECT_EQ(json["faceCounts"], Json::parse("[[0, 2], [4000000, 0], [8000000, 20]]"));
}

TEST(KeptFacts, ReadBackAsWritten) {
    EXPECT_EQ(parseKeptFacts(keptFactsText(video())), video());
    EXPECT_EQ(parseKeptFacts(keptFactsText(photo())), photo());
}

TEST(KeptFacts, NamesOfFilesMayBeAnyBytes) {
    KeptFacts facts = photo();
    facts.file = "/\xff\xfe\x01\x7f\"\\\xc3";
    EXPECT_EQ(parseKeptFacts(keptFactsText(facts)), facts);
}

std::vector<std::int64_t> sorted(std::vector<std::int64_t> values) {
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

std::vector<std::string> anyWarnings() {
    return *rc::gen::container<std::vector<std::string>>(
        rc::gen::container<std::string>(rc::gen::inRange(' ', '\x7f')));
}

KeptFacts anyFacts() {
    KeptFacts facts;
    facts.madeBy = *rc::gen::arbitrary<std::string>();
    facts.file = "/" + *rc::gen::container<std::string>(rc::gen::nonZero<char>());
    facts.footage.isVideo = *rc::gen::arbitrary<bool>();
    facts.footage.originTimestamp = *rc::gen::arbitrary<std::int64_t>();
    facts.footage.warnings = anyWarnings();
    if (!facts.footage.isVideo) return facts;
    facts.footage.durationTicks =
        *rc::gen::inRange<std::int64_t>(1, reference_host::media::maxDurationTicks + 1);
    facts.footage.lastTimestamp = *rc::gen::arbitrary<std::int64_t>();
    facts.footage.keyTimestamps = sorted(*rc::gen::arbitrary<std::vector<std::int64_t>>());
    facts.analysisWarnings = anyWarnings();
    for (const std::int64_t position : *rc::gen::arbitrary<std::vector<std::int64_t>>())
        facts.faceCounts[position] = *rc::gen::inRange(0, 21);
    return facts;
}

RC_GTEST_PROP(KeptFacts, AnyReadBackAsWritten, ()) {
    const KeptFacts facts = anyFacts();
    RC_ASSERT(parseKeptFacts(keptFactsText(facts)) == facts);
}

RC_GTEST_PROP(KeptFacts, DamageGivesNoneOrPossibleOnes, ()) {
    std::string text = keptFactsText(anyFacts());
    const int changes = *rc::gen::inRange(1, 4);
    for (int i = 0; i < changes; ++i) {
        const auto place = *rc::gen::inRange<std::size_t>(0, text.size());
        text[place] = *rc::gen::arbitrary<char>();
    }
    const std::optional<KeptFacts> read = parseKeptFacts(text);
    if (!read) return;
    RC_ASSERT(read->footage.durationTicks > 0);
    RC_ASSERT(parseKeptFacts(keptFactsText(*read)) == read);
}

TEST(KeptFacts, NoPartOfThemIsTakenForTheWhole) {
    const std::string text = keptFactsText(video());
    for (std::size_t size = 0; size < text.size(); ++size)
        EXPECT_FALSE(parseKeptFacts(text.substr(0, size))) << size;
    EXPECT_FALSE(parseKeptFacts(text + "x"));
}

TEST(KeptFacts, OneFlippedBitNeverBreaksTheReader) {
    const std::string text = keptFactsText(video());
    std::size_t refused = 0;
    for (std::size_t bit = 0; bit < text.size() * 8; ++bit) {
        std::string flipped = text;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        const std::optional<KeptFacts> read = parseKeptFacts(flipped);
        if (read) {
            EXPECT_EQ(parseKeptFacts(keptFactsText(*read)), read) << flipped;
        } else {
            ++refused;
        }
    }
    EXPECT_GT(refused, text.size() * 4) << "names, types and structure are most of the text";
}

TEST(KeptFacts, MissingMembersAreRefused) {
    const Json whole = Json::parse(keptFactsText(video()));
    for (const auto& [name, value] : whole.items()) {
        Json part = whole;
        part.erase(name);
        EXPECT_FALSE(parseKeptFacts(part.dump())) << name;
    }
}

TEST(KeptFacts, WrongTypesAreRefused) {
    const std::vector<Json> values = {nullptr,
                                      true,
                                      "text",
                                      1,
                                      1.5,
                                      Json::array(),
                                      Json::object(),
                                      {1, "text"},
                                      {{1, 2}, {3, "text"}}};
    const Json whole = Json::parse(keptFactsText(video()));
    for (const auto& [name, right] : whole.items()) {
        for (const Json& value : values) {
            const bool isRight = value.type() == right.type() && value.empty();
            const bool isRightNumber = value == 1 && right.is_number();
            const bool isRightText = (value == "text" && name == "madeBy") || value == right;
            if (isRight || isRightNumber || isRightText) continue;
            EXPECT_FALSE(parseKeptFacts(with(name, value))) << name << ": " << value;
        }
    }
}

TEST(KeptFacts, OtherFormatsAreRefused) {
    ASSERT_TRUE(parseKeptFacts(with("format", 1)));
    EXPECT_FALSE(parseKeptFacts(with("format", 0)));
    EXPECT_FALSE(parseKeptFacts(with("format", 2)));
    EXPECT_FALSE(parseKeptFacts(with("format", 1.0)));
}

TEST(KeptFacts, NumbersOutOfRangeAreRefused) {
    const Json beyond = 9223372036854775808U;
    for (const char* name : {"durationTicks", "originTimestamp", "lastTimestamp"}) {
        EXPECT_FALSE(parseKeptFacts(with(name, beyond))) << name;
        EXPECT_FALSE(parseKeptFacts(with(name, 1e300))) << name;
    }
    EXPECT_FALSE(parseKeptFacts(with("durationTicks", 0)));
    EXPECT_FALSE(parseKeptFacts(with("durationTicks", -1)));
    const std::int64_t longest = reference_host::media::maxDurationTicks;
    EXPECT_TRUE(parseKeptFacts(with("durationTicks", longest)));
    EXPECT_FALSE(parseKeptFacts(with("durationTicks", longest + 1)));
    EXPECT_FALSE(parseKeptFacts(with("keyTimestamps", Json::array({0, beyond}))));
    EXPECT_FALSE(parseKeptFacts(with("faceCounts", Json::parse("[[0, 21]]"))));
    EXPECT_FALSE(parseKeptFacts(with("faceCounts", Json::parse("[[0, -1]]"))));
    EXPECT_FALSE(parseKeptFacts(with("faceCounts", Json::parse("[[0]]"))));
    EXPECT_FALSE(parseKeptFacts(with("faceCounts", Json::parse("[[0, 1, 2]]"))));
}

TEST(KeptFacts, TimestampsHaveToAscend) {
    EXPECT_TRUE(parseKeptFacts(with("keyTimestamps", {-3, 0, 5})));
    EXPECT_FALSE(parseKeptFacts(with("keyTimestamps", {-3, 5, 0})));
    EXPECT_FALSE(parseKeptFacts(with("keyTimestamps", {-3, 0, 0})));
    EXPECT_FALSE(parseKeptFacts(with("faceCounts", Json::parse("[[5, 1], [4, 1]]"))));
    EXPECT_FALSE(parseKeptFacts(with("faceCounts", Json::parse("[[5, 1], [5, 1]]"))));
}

TEST(KeptFacts, MoreKeyFramesThanAreEverKeptAreRefused) {
    std::vector<std::int64_t> timestamps(reference_host::media::maxKeyTimestamps);
    for (std::size_t i = 0; i < timestamps.size(); ++i)
        timestamps[i] = static_cast<std::int64_t>(i);
    EXPECT_TRUE(parseKeptFacts(with("keyTimestamps", timestamps)));
    timestamps.push_back(std::numeric_limits<std::int64_t>::max());
    EXPECT_FALSE(parseKeptFacts(with("keyTimestamps", timestamps)));
}

TEST(KeptFacts, PhotosHaveNoLengthAndNoAnalysis) {
    Json json = Json::parse(keptFactsText(photo()));
    ASSERT_TRUE(parseKeptFacts(json.dump()));
    for (const auto& [name, value] : {std::pair<std::string, Json>{"durationTicks", 2},
                                      {"lastTimestamp", 1},
                                      {"keyTimestamps", Json::array({1})},
                                      {"analysisWarnings", Json::array({"damaged"})},
                                      {"faceCounts", Json::parse("[[0, 1]]")}}) {
        Json changed = json;
        changed[name] = value;
        EXPECT_FALSE(parseKeptFacts(changed.dump())) << name;
    }
}

TEST(KeptFacts, WarningsArePlainLines) {
    for (const char* warnings : {"warnings", "analysisWarnings"}) {
        EXPECT_TRUE(parseKeptFacts(with(warnings, {"damaged: 100 %"})));
        for (const char* text : {"two\nlines", "\x1b[31mred", "\x7f", "\xc2\x9b"})
            EXPECT_FALSE(parseKeptFacts(with(warnings, Json::array({text}))));
    }
}

TEST(KeptFacts, FileIsAnAbsolutePath) {
    EXPECT_FALSE(parseKeptFacts(with("file", "")));
    EXPECT_FALSE(parseKeptFacts(with("file", "a.mp4")));
    EXPECT_FALSE(parseKeptFacts(with("file", std::string("/a\0b", 4))));
}

TEST(KeptFacts, AnyDepthIsOnlyBroken) {
    const std::size_t size = 8 << 20;
    EXPECT_FALSE(parseKeptFacts(std::string(size, '[')));
    std::string objects;
    while (objects.size() < size)
        objects += "{\"a\":";
    EXPECT_FALSE(parseKeptFacts(objects));
    EXPECT_FALSE(parseKeptFacts("{\"format\":" + std::string(size, '9') + "}"));
}

}  // namespace
}  // namespace reference_host_tests
