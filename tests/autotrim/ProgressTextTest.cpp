#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "autotrim/ProgressText.h"
#include "autotrim/Utf8.h"

namespace autotrim {
namespace {

using std::chrono::seconds;

TEST(ProgressBar, ShowsBarPercentTimeAndFile) {
    EXPECT_EQ(progressBar({"clip.mp4", 2, 3, 50}, seconds(65), 79),
              "[===============               ]  50%  1:05 left  2/3 clip.mp4");
}

TEST(ProgressBar, LeavesOutWhatIsNotKnown) {
    EXPECT_EQ(progressBar({"clip.mp4", 1, 1, 0}, std::nullopt, 79),
              "[                              ]   0%  clip.mp4");
    EXPECT_EQ(progressBar({"clip.mp4", 1, 1, 100}, seconds(0), 79),
              "[==============================] 100%  0:00 left  clip.mp4");
}

TEST(ProgressBar, ShowsHoursOfALongRun) {
    EXPECT_EQ(progressBar({"clip.mp4", 1, 1, 1}, seconds(7384), 79),
              "[                              ]   1%  2:03:04 left  clip.mp4");
}

TEST(ProgressBar, KeepsItsLengthWhenTheTimeAppears) {
    const Progress progress{"clip.mp4", 2, 3, 50};
    for (std::size_t columns = 0; columns < 100; ++columns) {
        const std::size_t end = progressBar(progress, std::nullopt, columns).find(']');
        for (const int left : {0, 59, 3599, 3600, 359999}) {
            EXPECT_EQ(progressBar(progress, seconds(left), columns).find(']'), end) << columns;
        }
    }
}

TEST(ProgressBar, FitsEveryWidth) {
    const std::string longName(300, 'x');
    for (std::size_t columns = 0; columns < 200; ++columns) {
        for (const std::string& name : {longName, std::string("\xE7\x9F\xAD\xE7\x89\x87.mp4")}) {
            for (const int percent : {-5, 0, 100, 250}) {
                const Progress progress{name, 1000, 1000, percent};
                EXPECT_LE(columnsNeeded(progressBar(progress, seconds(9999), columns)), columns);
                EXPECT_LE(columnsNeeded(progressBar(progress, seconds::max(), columns)), columns);
                EXPECT_LE(columnsNeeded(openingLine(progress, columns)), columns);
            }
        }
    }
}

TEST(ProgressBar, NamesThePlaceWhereTheNameFindsNoRoom) {
    EXPECT_EQ(progressBar({"clip.mp4", 8, 10, 42}, seconds(65), 39),
              "[===     ]  42%  1:05 left  8/10");
}

TEST(ProgressBar, KeepsThePercentageOnANarrowTerminal) {
    EXPECT_EQ(progressBar({"clip.mp4", 1, 1, 42}, seconds(5), 10), " 42%");
}

TEST(ProgressBar, ShowsNamesHarmlessly) {
    const std::string line = progressBar({"\x1B]0;x\x07\r.mp4", 1, 1, 42}, std::nullopt, 79);
    EXPECT_EQ(line.find_first_of("\x1B\x07\r"), std::string::npos);
    EXPECT_NE(line.find("\\x1B]0;x\\x07\\x0D.mp4"), std::string::npos);
}

TEST(OpeningLine, NamesTheFileAndItsPlace) {
    EXPECT_EQ(openingLine({"clip.mp4", 1, 1, 0}, 79), "opening clip.mp4");
    EXPECT_EQ(openingLine({"clip.mp4", 2, 3, 0}, 79), "opening 2/3 clip.mp4");
}

TEST(ProgressLine, IsOneJsonObject) {
    EXPECT_EQ(progressLine({"clip.mp4", 1, 2, 7}), "{\"file\":\"clip.mp4\",\"percent\":7}\n");
    const std::string line = progressLine({"a\n\xFF\".mp4", 1, 1, 7});
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_EQ(nlohmann::json::parse(line)["file"], "a\n\xEF\xBF\xBD\".mp4");
}

class RemainingTimeOf : public testing::Test {
protected:
    std::optional<seconds> at(int percent, int second) {
        return remaining_.at(percent, RemainingTime::Clock::time_point(seconds(second)));
    }

    RemainingTime remaining_;
};

TEST_F(RemainingTimeOf, ASteadyRunFollowsItsPace) {
    EXPECT_EQ(at(0, 100), std::nullopt);
    EXPECT_EQ(at(0, 105), std::nullopt);
    EXPECT_EQ(at(10, 110), seconds(90));
    EXPECT_EQ(at(50, 150), seconds(50));
    EXPECT_EQ(at(100, 200), seconds(0));
}

TEST_F(RemainingTimeOf, ARunThatBeganLateCountsFromThere) {
    EXPECT_EQ(at(60, 100), std::nullopt);
    EXPECT_EQ(at(80, 120), seconds(20));
}

TEST_F(RemainingTimeOf, AWaitingRunGoesDownToZero) {
    at(0, 100);
    EXPECT_EQ(at(50, 110), seconds(10));
    EXPECT_EQ(at(50, 114), seconds(6));
    EXPECT_EQ(at(50, 130), seconds(0));
}

}  // namespace
}  // namespace autotrim
