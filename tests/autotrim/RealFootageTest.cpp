#include <algorithm>
#include <cstdlib>
#include <set>

#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/Process.h"
#include "tests/autotrim/ProgramReport.h"
#include "tests/autotrim/TemporaryDirectory.h"

namespace autotrim {
namespace {

using std::filesystem::path;

class RealFootage : public testing::Test {
protected:
    void SetUp() override {
        const char* const directory = std::getenv("MATERIAL_ANALYSIS_CLIPS");
        if (directory == nullptr) GTEST_SKIP() << "MATERIAL_ANALYSIS_CLIPS is not set";
        clips_ = directory;
    }

    std::vector<path> videos() const {
        const std::set<std::string> endings = {".mp4", ".mkv", ".gif"};
        std::vector<path> found;
        for (const auto& entry : std::filesystem::directory_iterator(clips_)) {
            if (endings.contains(entry.path().extension())) found.push_back(entry.path());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    path clip(const char* name) const { return clips_ / name; }

private:
    path clips_;
};

/// Runs autotrim on one video that is good, and returns its entry of the report.
Json entryOf(const path& video, const path& cache, const std::string& minScene) {
    const Ended ended =
        run({"--json", "-", "--cache", cache.string(), "--min-scene", minScene, video.string()});
    EXPECT_EQ(ended.exitCode, exitAllDone) << ended.errors;
    return Json::parse(ended.output)["materials"][0];
}

TEST_F(RealFootage, EndsWellForEveryVideo) {
    constexpr std::int64_t minLengthTicks = 20000000;
    ASSERT_FALSE(videos().empty());
    for (const path& video : videos()) {
        SCOPED_TRACE(video.filename().string());
        const TemporaryDirectory cache;
        const Json entry = entryOf(video, cache.path(), "2");
        EXPECT_EQ(entry["type"], "video");
        EXPECT_TRUE(entry["error"].is_null());
        EXPECT_FALSE(entry["results"].empty());
        const Json cached = onlyCachedResult(cache.path());
        if (entry["duration"].get<std::int64_t>() <= minLengthTicks) {
            EXPECT_EQ(entry["outcome"], "default");
            EXPECT_TRUE(cached.is_null());
        } else {
            EXPECT_EQ(entry["outcome"], "analysed");
            ASSERT_TRUE(cached.is_object());
            EXPECT_EQ(withoutFaces(cached["result"]), withoutFaces(entry["results"]));
        }
    }
}

TEST_F(RealFootage, GivesTheSixShotsOfBikes) {
    const TemporaryDirectory cache;
    const Json entry = entryOf(clip("bikes.mp4"), cache.path(), "0");
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
