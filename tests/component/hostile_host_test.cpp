#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

/// A host that fails, or does what no host should do, never takes the component down.
class HostileHost : public RunTest {
protected:
    void insertVideos(int count) {
        for (int i = 0; i < count; ++i) {
            insert(video("clip.mp4", 100 * second)
                       .scenes({{0, 40 * second}, {40 * second, 100 * second}})
                       .keyFrames({5 * second, 50 * second}));
        }
    }
};

TEST_F(HostileHost, WithoutAnyListStillEndsTheRun) {
    insertVideos(2);
    useKinds({4, 3});
    for (const Product list :
         {Product::intList, Product::longlongList, Product::pointerList, Product::owningList}) {
        host().faults.failEveryMaking(list);
    }
    runToEnd();
    EXPECT_EQ(host().startCount, 4);
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(HostileHost, WhoseListsTakeNothingStillEndsTheRun) {
    insertVideos(2);
    useKinds({4, 3});
    for (const Product list : {Product::longlongList, Product::pointerList, Product::owningList}) {
        host().faults.failAppends(list);
    }
    runToEnd();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(HostileHost, WhoseOperationsAllFailStillEndsTheRun) {
    insertVideos(2);
    useKinds({4, 3});
    for (std::size_t i = 0; i < 2; ++i) {
        for (const char* const operation :
             {"setSource", "setPriority", "setParameterMode", "setSceneRanges",
              "setKeyFramePositions", "setParameterBlock", "getResultList"}) {
            task(i).answer(operation, KOR::statusFailed);
        }
    }
    runToEnd();
    EXPECT_EQ(host().startCount, 4);
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(HostileHost, WithoutALogChangesNothingElse) {
    insertVideos(1);
    useKinds({4, 3});
    host().faults.loggerAbsent = true;
    runToEnd();
    EXPECT_EQ(probe().results().size(), 2U);
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(HostileHost, ThatFinishesTwiceIsTakenAtItsWord) {
    insertVideos(2);
    useKinds({4, 3});
    component().start();
    task(0).finish();
    // The second finish of the first task counts as the finish of the second one.
    task(0).finish();
    EXPECT_EQ(probe().currentMaterialIndex(), 1);
    EXPECT_EQ(probe().currentTaskIndex(), 0);
}

TEST_F(HostileHost, ThatFinishesBeforeAnyStartBeginsARun) {
    insertVideos(1);
    useKinds({4, 3});
    probe().onTaskEvent(1, 2, nullptr);
    EXPECT_LE(host().startCount, 1);
    host().finishAllTasks();
    EXPECT_LE(listener.heard().size(), 1U);
}

TEST_F(HostileHost, ThatFinishesAfterTheEndReadsNothingOutside) {
    insertVideos(1);
    useKinds({4, 3});
    runToEnd();
    const std::size_t records = probe().results().size();
    task(1).finish();
    task(1).finish();
    EXPECT_EQ(probe().results().size(), records);
    for (const std::uint32_t event : listener.events())
        EXPECT_EQ(event, 2U);
}

TEST_F(HostileHost, ThatReportsBeforeAnyStartGetsAnAnswer) {
    insertVideos(1);
    useKinds({4, 3});
    task(0).progress(50);
    task(0).send(1, 3, nullptr);
    EXPECT_EQ(listener.events(), (Events{1, 3}));
}

TEST_F(HostileHost, ThatReportsAbsurdPercentagesGetsAnAnswer) {
    insertVideos(1);
    useKinds({4, 3});
    component().start();
    for (const std::int32_t percent :
         {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min(), -1}) {
        task(0).progress(percent);
    }
    ASSERT_EQ(listener.heard().size(), 3U);
    EXPECT_EQ(listener.heard()[0].payload->progress, 1073741823);
    EXPECT_EQ(listener.heard()[1].payload->progress, -1073741824);
    EXPECT_EQ(listener.heard()[2].payload->progress, 0);
}

TEST_F(HostileHost, WithDisorderedResultsGetsSortedRecords) {
    insert(video("clip.mp4", 100 * second)
               .scenes({{50 * second, 100 * second}, {0, 50 * second}})
               .keyFrames({60 * second, 10 * second}));
    useKinds({4, 3});
    runToEnd();
    // The walk passes over the second keyframe: it lies before the first scene's begin.
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].begin, 50 * second);
}

TEST_F(HostileHost, WithEntropyThatIsNoNumberPicksAnotherKeyFrame) {
    insert(video("clip.mp4", 100 * second)
               .keyFrames({5 * second, 50 * second})
               .entropies({{5 * second, std::nan("")}, {50 * second, 1.0}}));
    useKinds({6, 7});
    runToEnd();
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].posOfMaxScore, 50 * second);
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(HostileHost, WithAbsurdFacesStillScoresThem) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const KOR::FaceDetectFrame absurd =
        frameCounting(std::numeric_limits<std::int32_t>::max(),
                      {{infinity, std::nan(""), infinity, infinity}, {0.5, 0.5, std::nan(""), 1}});
    insert(video("clip.mp4", 100 * second).keyFrames({5 * second}).faceFrames({absurd}));
    useKinds({6, 7});
    runToEnd();
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].score, 1000000001 * 0.3 / 1000000000 + scoreWithoutFaces);
}

TEST_F(HostileHost, WithNegativeDurationsIsSurvived) {
    insert(video("negative.mp4", -5));
    insert(video("lowest.mp4", std::numeric_limits<std::int64_t>::min()).keyFrames({1}));
    setParam("minNeedAnalysisDuartion", std::numeric_limits<std::int32_t>::min());
    useKinds({4, 3});
    component().start();
    task(0).progress(50);
    host().finishAllTasks();
    EXPECT_EQ(listener.events(), (Events{1, 2}));
}

TEST_F(HostileHost, WithTheLongestVideoIsSurvived) {
    constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
    insert(video("longest.mp4", longest).scenes({{0, longest}}).keyFrames({longest - 1}));
    insert(video("longest.mp4", longest));
    useKinds({4, 3});
    component().start();
    task(0).progress(50);
    host().finishAllTasks();
    EXPECT_EQ(listener.events(), (Events{1, 2}));
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].end, longest);
}

TEST_F(HostileHost, WithTheLongestShortVideoTruncatesItsMiddle) {
    constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
    MediaSpec endless = photo("endless.jpg").mediaLength(1);
    endless.durationTicks = longest;
    insert(endless);
    component().start();
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].posOfMaxScore, std::int64_t{1} << 62);
}

}  // namespace
}  // namespace fake_host
