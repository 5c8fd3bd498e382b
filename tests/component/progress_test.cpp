#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

class Progress : public RunTest {
protected:
    /// Two videos of 100 and 300 ticks, both analysed.
    void twoVideos(std::size_t taskCount) {
        insert(video("a.mp4", 100));
        insert(video("b.mp4", 300));
        setParam("minNeedAnalysisDuartion", 0);
        useKinds(std::vector<std::int32_t>(taskCount, 2));
    }
};

TEST_F(Progress, CountsTasksOfTheFirstVideo) {
    twoVideos(2);
    component().start();
    task(0).progress(50);
    // A quarter of a quarter.
    EXPECT_EQ(listener.lastProgress(), 6);
}

TEST_F(Progress, CountsWhatWasDoneBefore) {
    twoVideos(2);
    probe().moveTo(1, 1);
    // The second half of the task list, half done, on three quarters, behind one quarter: 81.25.
    EXPECT_EQ(probe().overallProgressAt(50), 81);
}

TEST_F(Progress, DividesWithoutLosingFractions) {
    insert(video("a.mp4", 100));
    useKinds({2, 2, 2});
    probe().moveTo(0, 2);
    EXPECT_EQ(probe().overallProgressAt(50), 83);
}

TEST_F(Progress, OfAPhotoIgnoresTheTaskList) {
    insert(video("a.mp4", 300));
    MediaSpec shown = photo("shown.jpg").mediaLength(1);
    shown.durationTicks = 100;
    insert(shown);
    useKinds({4, 1});
    probe().moveTo(1, 1);
    EXPECT_EQ(probe().overallProgressAt(50), 87);
}

TEST_F(Progress, TruncatesTowardZero) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    EXPECT_EQ(probe().overallProgressAt(33), 16);
    EXPECT_EQ(probe().overallProgressAt(-33), -16);
}

TEST_F(Progress, IsScaled) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    probe().progressScale() = 0.5;
    EXPECT_EQ(probe().overallProgressAt(50), 12);
}

TEST_F(Progress, OfNoDurationAtAllIsZero) {
    insert(video("empty.mp4", 0));
    useKinds({4, 3});
    probe().moveTo(0, 1);
    EXPECT_EQ(probe().overallProgressAt(50), 0);
}

TEST_F(Progress, BeyondItsTypeIsClamped) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    probe().progressScale() = 1e300;
    EXPECT_EQ(probe().overallProgressAt(50), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(probe().overallProgressAt(-50), std::numeric_limits<std::int32_t>::min());
}

TEST_F(Progress, ThatIsNoNumberIsZero) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    probe().progressScale() = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(probe().overallProgressAt(50), 0);
}

TEST_F(Progress, OfEndlessMaterialsStaysAPercentage) {
    insert(video("a.mp4", std::numeric_limits<std::int64_t>::max()));
    insert(video("b.mp4", std::numeric_limits<std::int64_t>::max()));
    useKinds({4, 3});
    probe().moveTo(1, 1);
    const std::int32_t progress = probe().overallProgressAt(50);
    EXPECT_GE(progress, 0);
    EXPECT_LE(progress, 100);
}

TEST_F(Progress, ForwardsACopyOfThePayload) {
    insert(video("a.mp4", 100 * second));
    useKinds({4, 3});
    component().start();
    KOR::TaskEventPayload payload{};
    payload.progress = 50;
    payload.reasonCode = 9;
    std::strcpy(payload.reason, "kept");
    task(0).send(1, 1, &payload);
    ASSERT_EQ(listener.heard().size(), 1U);
    const HeardEvent& heard = listener.heard()[0];
    EXPECT_NE(heard.payloadAddress, static_cast<void*>(&payload));
    EXPECT_EQ(heard.sender, static_cast<KOR::IDmBaseObj*>(&component()));
    EXPECT_EQ(heard.category, 1U);
    EXPECT_EQ(heard.payload->progress, 25);
    EXPECT_EQ(heard.payload->reasonCode, 9);
    EXPECT_STREQ(heard.payload->reason, "kept");
    EXPECT_EQ(payload.progress, 50);
}

TEST_F(Progress, WithoutAPayloadCountsAsZeroPercent) {
    insert(video("a.mp4", 100 * second));
    useKinds({4, 3});
    component().start();
    task(0).finish();
    task(1).send(1, 1, nullptr);
    ASSERT_EQ(listener.events(), Events{1});
    EXPECT_EQ(listener.lastProgress(), 50);
}

}  // namespace
}  // namespace fake_host
