#include <cstdint>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

/// The kind and length of a material show in its default record, whose end is its duration, and in
/// whether a run starts a task for it.
class MediaQueries : public ComponentTest {
protected:
    std::int64_t durationOf(const MediaSpec& spec) {
        insert(spec);
        probe().moveTo(0, -1);
        EXPECT_EQ(probe().addDefaultResult(1), KOR::statusOk);
        return probe().results().back().end;
    }

    bool isAnalysed(std::uint32_t typeCode) {
        insert(video("some", 100 * second).typeCode(typeCode));
        useKinds({4, 3});
        component().start();
        return task(0).running();
    }
};

TEST_F(MediaQueries, PhotoOfLengthZeroLastsOneTick) {
    MediaSpec spec = photo("photo.jpg").mediaLength(0);
    spec.durationTicks = 7;
    EXPECT_EQ(durationOf(spec), 1);
}

TEST_F(MediaQueries, PhotoOfNegativeLengthLastsOneTick) {
    MediaSpec spec = photo("photo.jpg").mediaLength(-5);
    spec.durationTicks = 7;
    EXPECT_EQ(durationOf(spec), 1);
}

TEST_F(MediaQueries, PhotoWithoutSourceInterfaceLastsOneTick) {
    MediaSpec spec = photo("photo.jpg").mediaLength(50).withoutSourceMedia();
    spec.durationTicks = 7;
    EXPECT_EQ(durationOf(spec), 1);
}

TEST_F(MediaQueries, PhotoWithoutSourceLastsOneTick) {
    MediaSpec spec = photo("photo.jpg").mediaLength(50).withoutSource();
    spec.durationTicks = 7;
    EXPECT_EQ(durationOf(spec), 1);
}

TEST_F(MediaQueries, PhotoOfPositiveLengthLastsItsDuration) {
    MediaSpec spec = photo("photo.jpg").mediaLength(1);
    spec.durationTicks = 7;
    EXPECT_EQ(durationOf(spec), 7);
}

TEST_F(MediaQueries, VideoLastsItsDuration) {
    EXPECT_EQ(durationOf(video("clip.mp4", 123).mediaLength(0)), 123);
}

TEST_F(MediaQueries, VideoLastsItsDurationWhateverItsLength) {
    EXPECT_EQ(durationOf(video("clip.mp4", 123).mediaLength(999)), 123);
}

TEST_F(MediaQueries, TypeTwoIsTimeBased) {
    EXPECT_TRUE(isAnalysed(2));
}

TEST_F(MediaQueries, TypeEightIsTimeBased) {
    EXPECT_TRUE(isAnalysed(8));
}

TEST_F(MediaQueries, SequenceTypeIsTimeBased) {
    EXPECT_TRUE(isAnalysed(0x40000));
}

TEST_F(MediaQueries, EveryOtherTypeIsStill) {
    for (const std::uint32_t code :
         {0U, 1U, 3U, 4U, 9U, 10U, 16U, 0x40002U, 0x80000U, 0xFFFFFFFFU}) {
        insert(video("some", 100 * second).typeCode(code));
    }
    useKinds({4, 3});
    component().start();
    EXPECT_FALSE(task(0).running());
    EXPECT_EQ(probe().results().size(), 10U);
}

}  // namespace
}  // namespace fake_host
