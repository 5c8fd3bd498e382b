#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/AnalysisRun.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/PictureReaders.h"

namespace reference_host_tests {
namespace {

/// Real footage: each clip is read and analysed as a whole.
class ClipsTest : public testing::Test {
protected:
    void SetUp() override {
        const char* directory = std::getenv("MATERIAL_ANALYSIS_CLIPS");
        if (directory == nullptr) GTEST_SKIP() << "MATERIAL_ANALYSIS_CLIPS is not set";
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            const std::string ending = entry.path().extension().string();
            if (ending == ".mp4" || ending == ".mkv" || ending == ".gif") {
                clips.push_back(entry.path());
            }
        }
        std::sort(clips.begin(), clips.end());
        ASSERT_FALSE(clips.empty());
    }

    std::vector<std::filesystem::path> clips;
};

TEST_F(ClipsTest, PositionsAscendFromZeroBelowTheDuration) {
    for (const auto& clip : clips) {
        SCOPED_TRACE(clip);
        const auto material = import(clip);
        const auto positions = positionsOf(clip);
        ASSERT_GT(positions.size(), 1U);
        EXPECT_EQ(positions.front(), 0);
        EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end(), std::less_equal<>()));
        EXPECT_LT(positions.back(), mediaOf(material).getDuration());
    }
}

TEST_F(ClipsTest, ScenesTileEachClipAndHoldKeyFrames) {
    for (const auto& clip : clips) {
        SCOPED_TRACE(clip);
        AnalysisRun run({1, 9}, clip);
        run.finish();
        EXPECT_EQ(run.recorder.milestones(), Milestones{2});
        std::int64_t end = 0;
        const auto keyFrames = run.keyFrames();
        for (const KOR::TickRange& scene : run.scenes()) {
            EXPECT_EQ(scene.begin, end);
            end = scene.end;
            const auto inside = [&](std::int64_t p) { return p >= scene.begin && p < scene.end; };
            EXPECT_TRUE(std::any_of(keyFrames.begin(), keyFrames.end(), inside));
        }
        EXPECT_EQ(end, mediaOf(run.material).getDuration());
        EXPECT_TRUE(reference_host::reportOf(*run.material).warnings.empty());
    }
}

TEST_F(ClipsTest, ManyPicturesShowWhatFewShow) {
    for (const auto& clip : clips) {
        SCOPED_TRACE(clip);
        std::vector<std::int64_t> handed = positionsOf(clip);
        while (handed.size() > 60) {
            for (std::size_t i = 0; i < handed.size() / 2; ++i)
                handed[i] = handed[2 * i];
            handed.resize(handed.size() / 2);
        }
        AnalysisRun many({2, 8}, clip);
        many.lookAt(handed);
        many.finish();
        // So few that they are looked at one after the other.
        constexpr std::size_t few = 15;
        AnalysisRun run({2, 8}, clip);
        for (std::size_t begin = 0; begin < handed.size(); begin += few) {
            run.prepare();
            const auto at = handed.begin() + static_cast<std::ptrdiff_t>(begin);
            const std::size_t count = std::min(few, handed.size() - begin);
            run.lookAt({at, at + static_cast<std::ptrdiff_t>(count)});
            run.finish(begin / few + 1);
            for (std::size_t i = 0; i < count; ++i) {
                EXPECT_EQ(many.entropies().at(begin + i).entropy, run.entropies().at(i).entropy);
                EXPECT_EQ(many.blurs().at(begin + i).sharpness, run.blurs().at(i).sharpness);
            }
        }
    }
}

}  // namespace
}  // namespace reference_host_tests
