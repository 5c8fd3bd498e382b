#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/Process.h"
#include "tests/autotrim/ProgramReport.h"
#include "tests/autotrim/RealFootage.h"
#include "tests/autotrim/TemporaryDirectory.h"

namespace autotrim {
namespace {

using std::filesystem::path;

/// Runs autotrim on one video that is good, and returns its entry of the report.
Json entryOf(const path& video, std::vector<std::string> options) {
    options.insert(options.end(), {"--json", "-", video.string()});
    const Ended ended = run(options);
    EXPECT_EQ(ended.exitCode, exitAllDone) << ended.errors;
    return Json::parse(ended.output)["materials"][0];
}

TEST_F(RealFootage, EndsWellForEveryVideo) {
    constexpr std::int64_t minLengthTicks = 20000000;
    ASSERT_FALSE(videos().empty());
    for (const path& video : videos()) {
        SCOPED_TRACE(video.filename().string());
        const TemporaryDirectory cache;
        const Json entry = entryOf(video, {"--cache", cache.path().string()});
        EXPECT_EQ(entry["type"], "video");
        EXPECT_TRUE(entry["error"].is_null());
        EXPECT_FALSE(entry["results"].empty());
        const Json cached = onlyCachedResult(cache.path());
        if (entry["duration"].get<std::int64_t>() <= minLengthTicks) {
            EXPECT_EQ(entry["outcome"], "default");
            for (const Json& record : entry["results"])
                EXPECT_TRUE(record["faces"].is_null());
            EXPECT_TRUE(cached.is_null());
        } else {
            EXPECT_EQ(entry["outcome"], "analysed");
            for (const Json& record : entry["results"])
                EXPECT_TRUE(record["faces"].is_number_integer());
            ASSERT_TRUE(cached.is_object());
            EXPECT_EQ(withoutFaces(cached["result"]), withoutFaces(entry["results"]));
        }
    }
}

TEST_F(RealFootage, IsReportedAlikeByAnyNumberOfJobs) {
    const auto reportBy = [this](const char* jobs) {
        std::vector<std::string> arguments = {"--no-cache", "--json", "-", "--jobs", jobs};
        for (const path& video : videos()) {
            arguments.push_back(video.string());
            arguments.push_back(video.string() + ".missing");
        }
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exitCode, exitSomeFailed);
        EXPECT_EQ(ended.errorLines().size(), videos().size()) << ended.errors;
        return ended.output;
    };
    const std::string one = reportBy("1");
    EXPECT_EQ(Json::parse(one)["materials"].size(), 2 * videos().size());
    EXPECT_EQ(reportBy("2"), one);
    EXPECT_EQ(reportBy("5"), one);
}

TEST_F(RealFootage, FindsTheOneFaceOfEachSigner) {
    for (const char* name :
         {"again", "book", "eat", "hungry", "milk", "no", "school", "sorry", "thanks", "want"}) {
        const Json entry = entryOf(clip(std::string(name) + ".mkv"), {"--min-length", "0"});
        EXPECT_EQ(entry["outcome"], "analysed") << name;
        EXPECT_FALSE(entry["results"].empty()) << name;
        for (const Json& record : entry["results"])
            EXPECT_EQ(record["faces"], 1) << name;
    }
}

TEST_F(RealFootage, FindsNoFaceInACartoon) {
    const Json entry = entryOf(clip("bigbuckbunny.mp4"), {"--min-scene", "0"});
    EXPECT_FALSE(entry["results"].empty());
    for (const Json& record : entry["results"])
        EXPECT_EQ(record["faces"], 0);
}

TEST_F(RealFootage, GivesTheSixShotsOfBikes) {
    const Json entry = entryOf(clip("bikes.mp4"), {"--min-scene", "0"});
    constexpr std::int64_t ticksPerFrame = 400000;
    std::vector<std::int64_t> frames;
    for (const std::int64_t begin : beginsOf(entry["results"])) {
        EXPECT_EQ(begin % ticksPerFrame, 0);
        frames.push_back(begin / ticksPerFrame);
    }
    EXPECT_EQ(frames, (std::vector<std::int64_t>{0, 30, 76, 137, 187, 242}));
}

}  // namespace
}  // namespace autotrim
