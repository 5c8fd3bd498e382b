#include <limits>

#include <gtest/gtest.h>

#include "autotrim/Table.h"

namespace autotrim {
namespace {

constexpr std::int64_t second = 10000000;

FileReport video(Outcome outcome) {
    FileReport report;
    report.file = "clip.mp4";
    report.type = MaterialType::video;
    report.duration = 12 * second;
    report.outcome = outcome;
    report.results = {{0.3125, 0, 5 * second, 2 * second + 1230000, {}, {}},
                      {0.25, 5 * second, 12 * second, 7 * second, {}, {}}};
    return report;
}

TEST(TimeCode, ShowsHoursToMilliseconds) {
    EXPECT_EQ(timeCode(0), "00:00:00.000");
    EXPECT_EQ(timeCode(62 * second + 3450000), "00:01:02.345");
    EXPECT_EQ(timeCode(360000 * second), "100:00:00.000");
}

TEST(TimeCode, RoundsToTheNearestMillisecond) {
    EXPECT_EQ(timeCode(4999), "00:00:00.000");
    EXPECT_EQ(timeCode(5000), "00:00:00.001");
    EXPECT_EQ(timeCode(60 * second - 1), "00:01:00.000");
}

TEST(TimeCode, HasRoomForEveryNumber) {
    EXPECT_EQ(timeCode(-second), "-00:00:01.000");
    EXPECT_EQ(timeCode(-4999), "00:00:00.000");
    EXPECT_EQ(timeCode(std::numeric_limits<std::int64_t>::max()), "256204778:48:05.478");
    EXPECT_EQ(timeCode(std::numeric_limits<std::int64_t>::min()), "-256204778:48:05.478");
}

TEST(Table, ListsEverySceneWithItsBestKeyFrame) {
    EXPECT_EQ(toTable(video(Outcome::analysed)),
              "clip.mp4  00:00:12.000  (analysed)\n"
              "  scene  begin           end           best keyframe   score\n"
              "      1  00:00:00.000  - 00:00:05.000  00:00:02.123    0.312\n"
              "      2  00:00:05.000  - 00:00:12.000  00:00:07.000    0.250\n");
}

TEST(Table, SaysWhereRecordsComeFrom) {
    const auto headingOf = [](const FileReport& report) {
        const std::string table = toTable(report);
        return table.substr(0, table.find('\n'));
    };
    EXPECT_EQ(headingOf(video(Outcome::restored)), "clip.mp4  00:00:12.000  (from the cache)");
    EXPECT_EQ(headingOf(video(Outcome::byDefault)),
              "clip.mp4  00:00:12.000  (too short to analyse: kept whole)");
}

TEST(Table, IsTheHeadingAloneForAPhoto) {
    FileReport photo = video(Outcome::byDefault);
    photo.type = MaterialType::photo;
    EXPECT_EQ(toTable(photo), "clip.mp4  (photo: kept whole)\n");
}

TEST(Table, CountsFacesWhereTheyWereLookedFor) {
    FileReport report = video(Outcome::analysed);
    report.results[0].faces = 0;
    report.results[1].faces = 20;
    EXPECT_EQ(toTable(report),
              "clip.mp4  00:00:12.000  (analysed)\n"
              "  scene  begin           end           best keyframe   score  faces\n"
              "      1  00:00:00.000  - 00:00:05.000  00:00:02.123    0.312      0\n"
              "      2  00:00:05.000  - 00:00:12.000  00:00:07.000    0.250     20\n");
    report.results[0].faces.reset();
    EXPECT_NE(toTable(report).find(" 0.312      -\n"), std::string::npos);
}

FileReport analysedPhoto(std::int32_t faces) {
    FileReport report;
    report.file = "portrait.jpg";
    report.type = MaterialType::photo;
    report.duration = 1;
    report.outcome = Outcome::analysed;
    report.results = {{1, 0, 1, 0, {0.25, 0.0625, 0.5, 1}, faces}};
    return report;
}

TEST(Table, ShowsWhereTheFaceOfAPhotoIs) {
    EXPECT_EQ(toTable(analysedPhoto(1)),
              "portrait.jpg  (analysed)\n"
              "  faces    left     top   width  height\n"
              "      1   25.0%    6.2%   50.0%  100.0%\n");
}

TEST(Table, ShowsTheLargestOfSeveralFaces) {
    EXPECT_EQ(toTable(analysedPhoto(2)),
              "portrait.jpg  (analysed)\n"
              "  faces    left     top   width  height\n"
              "      2   25.0%    6.2%   50.0%  100.0%  (the largest)\n");
}

TEST(Table, SaysThatAPhotoHasNoFace) {
    EXPECT_EQ(toTable(analysedPhoto(0)),
              "portrait.jpg  (analysed)\n"
              "  no face\n");
}

TEST(Table, SaysThatNothingWasKept) {
    FileReport report = video(Outcome::analysed);
    report.results.clear();
    EXPECT_EQ(toTable(report),
              "clip.mp4  00:00:12.000  (analysed)\n"
              "  no scene was kept\n");
}

TEST(Table, IsEmptyForAFileThatFailed) {
    FileReport report = video(Outcome::failed);
    report.results.clear();
    EXPECT_EQ(toTable(report), "");
}

TEST(Table, ShowsNamesHarmlessly) {
    FileReport report = video(Outcome::analysed);
    report.file = "\x1B[2J\n";
    EXPECT_EQ(toTable(report).substr(0, 11), "\\x1B[2J\\x0A");
}

}  // namespace
}  // namespace autotrim
