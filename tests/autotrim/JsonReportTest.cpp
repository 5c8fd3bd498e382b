#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "autotrim/JsonReport.h"

namespace autotrim {
namespace {

FileReport analysedVideo() {
    FileReport report;
    report.file = "clip.mp4";
    report.type = MaterialType::video;
    report.duration = 1234;
    report.outcome = Outcome::analysed;
    report.results = {{0.5, 0, 1, 0, {0, 0, 0, 0}, 2}};
    return report;
}

Report reportOf(FileReport file) {
    return {{6, 7}, {std::move(file)}};
}

nlohmann::ordered_json parsed(const Report& report) {
    return nlohmann::ordered_json::parse(toJson(report));
}

nlohmann::ordered_json parsedFile(FileReport file) {
    return parsed(reportOf(std::move(file)))["materials"][0];
}

TEST(JsonReport, HasExactlyTheDocumentedMembersInOrder) {
    EXPECT_EQ(parsed(reportOf(analysedVideo())).dump(),
              "{\"schema\":\"autotrim/1\",\"version\":\"" AUTOTRIM_VERSION
              "\",\"kinds\":[6,7],\"materials\":[{\"file\":\"clip.mp4\",\"type\":\"video\","
              "\"duration\":1234,\"outcome\":\"analysed\",\"error\":null,\"results\":[{\"score\":"
              "0.5,\"begin\":0,\"end\":1,\"posOfMaxScore\":0,\"faceRectOfPhoto\":"
              "[0.0,0.0,0.0,0.0],\"faces\":2}]}]}");
}

TEST(JsonReport, HasNullsForAFileThatFailed) {
    FileReport report;
    report.file = "missing.mp4";
    report.error = "no such file";
    EXPECT_EQ(parsedFile(report).dump(),
              R"({"file":"missing.mp4","type":null,"duration":null,"outcome":"failed",)"
              R"("error":"no such file","results":[]})");
}

TEST(JsonReport, NamesEveryTypeAndOutcome) {
    FileReport report = analysedVideo();
    report.outcome = Outcome::restored;
    EXPECT_EQ(parsedFile(report)["outcome"], "restored");
    report.outcome = Outcome::byDefault;
    report.type = MaterialType::photo;
    EXPECT_EQ(parsedFile(report)["outcome"], "default");
    EXPECT_EQ(parsedFile(report)["type"], "photo");
}

TEST(JsonReport, TellsNoFacesFromNoneLookedFor) {
    FileReport report = analysedVideo();
    report.results[0].faces = 0;
    EXPECT_EQ(parsedFile(report)["results"][0]["faces"].dump(), "0");
    report.results[0].faces.reset();
    EXPECT_EQ(parsedFile(report)["results"][0]["faces"].dump(), "null");
}

TEST(JsonReport, ReplacesBytesThatAreNotUtf8) {
    FileReport report = analysedVideo();
    report.file = "a\xFF\"\\\n.mp4";
    EXPECT_EQ(parsedFile(report)["file"], "a\xEF\xBF\xBD\"\\\n.mp4");
}

TEST(JsonReport, WritesNullForWhatIsNotFinite) {
    FileReport report = analysedVideo();
    report.results[0].score = std::nan("");
    report.results[0].faceRectOfPhoto[2] = std::numeric_limits<double>::infinity();
    const auto record = parsedFile(report)["results"][0];
    EXPECT_TRUE(record["score"].is_null());
    EXPECT_EQ(record["faceRectOfPhoto"].dump(), "[0.0,0.0,null,0.0]");
}

TEST(JsonReport, KeepsEveryBitOfNumbers) {
    FileReport report = analysedVideo();
    report.results = {{0.1 + 0.2,
                       std::numeric_limits<std::int64_t>::min(),
                       std::numeric_limits<std::int64_t>::max(),
                       -1,
                       {0.25, 1e-300, 1.0 / 3, 4},
                       std::nullopt}};
    const auto record = parsedFile(report)["results"][0];
    EXPECT_EQ(record["score"].get<double>(), 0.1 + 0.2);
    EXPECT_EQ(record["begin"].get<std::int64_t>(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(record["end"].get<std::int64_t>(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(record["posOfMaxScore"].get<std::int64_t>(), -1);
    EXPECT_EQ(record["faceRectOfPhoto"][1].get<double>(), 1e-300);
    EXPECT_EQ(record["faceRectOfPhoto"][2].get<double>(), 1.0 / 3);
}

TEST(JsonReport, EndsWithOneNewline) {
    const std::string text = toJson({{6, 2}, {}});
    EXPECT_EQ(text.back(), '\n');
    EXPECT_EQ(parsed({{6, 2}, {}})["materials"].dump(), "[]");
}

}  // namespace
}  // namespace autotrim
