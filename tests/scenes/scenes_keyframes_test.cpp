#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "reference_host/scenes/KeyFrameChoice.h"

namespace reference_host::scenes {
namespace {

constexpr std::int64_t second = 10'000'000;
constexpr std::int64_t step = second / 25;
constexpr std::int64_t farAway = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t longAgo = std::numeric_limits<std::int64_t>::min();

using Positions = std::vector<std::int64_t>;

KOR::KeyFrameParameters defaults() {
    return {6, 4, 0, 4, 2, 2};
}

/// Makes footage of equally sharp frames, 25 a second, to be changed by the tests.
FootageRecord footage(std::size_t count) {
    FootageRecord record;
    for (std::size_t i = 0; i < count; ++i) {
        record.frames.push_back({static_cast<std::int64_t>(i) * step, 10, 1, false, false,
                                 static_cast<std::uint32_t>(i)});
    }
    record.durationTicks = static_cast<std::int64_t>(count) * step;
    record.scenes = {{0, record.durationTicks}};
    return record;
}

TEST(KeyFrames, OneForEachStartedStretch) {
    const FootageRecord record = footage(1000);
    EXPECT_EQ(chooseKeyFrames(record, {{0, 4 * second}}, defaults()).size(), 1U);
    EXPECT_EQ(chooseKeyFrames(record, {{0, 4 * second + 1}}, defaults()).size(), 2U);
    EXPECT_EQ(chooseKeyFrames(record, {{0, 12 * second}}, defaults()).size(), 3U);
}

TEST(KeyFrames, NoMoreThanTheMost) {
    EXPECT_EQ(chooseKeyFrames(footage(2500), {{0, 100 * second}}, defaults()).size(), 6U);
}

TEST(KeyFrames, AreSpreadOut) {
    const Positions chosen = chooseKeyFrames(footage(600), {{0, 24 * second}}, defaults());
    ASSERT_EQ(chosen.size(), 6U);
    for (std::size_t i = 1; i < chosen.size(); ++i) {
        EXPECT_GE(chosen[i] - chosen[i - 1], 19 * second / 10);
        EXPECT_LE(chosen[i] - chosen[i - 1], 61 * second / 10);
    }
}

TEST(KeyFrames, SharpestOfTheMiddleHalfWins) {
    KOR::KeyFrameParameters parameters = defaults();
    parameters.candidatesPerKeyFrame = 1000;
    FootageRecord record = footage(100);
    record.frames[60].sharpness = 11;
    record.frames[23].sharpness = 90;
    record.frames[77].sharpness = 90;
    EXPECT_EQ(chooseKeyFrames(record, {{0, 4 * second}}, parameters), Positions({60 * step}));
}

TEST(KeyFrames, AmongEqualsTheMiddleOneWins) {
    KOR::KeyFrameParameters parameters = defaults();
    parameters.candidatesPerKeyFrame = 5;
    const Positions chosen = chooseKeyFrames(footage(101), {{0, 4 * second}}, parameters);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_NEAR(static_cast<double>(chosen[0]), 2.0 * second, static_cast<double>(2 * step));
}

TEST(KeyFrames, StayOutOfTransitions) {
    FootageRecord record = footage(100);
    for (std::size_t i = 10; i < 100; ++i) {
        record.frames[i].inTransition = true;
        record.frames[i].sharpness = 50;
    }
    const Positions chosen = chooseKeyFrames(record, {{0, 4 * second}}, defaults());
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_LT(chosen[0], 10 * step);
}

TEST(KeyFrames, TransitionServesWhereThereIsNothingElse) {
    FootageRecord record = footage(30);
    for (FrameRecord& frame : record.frames)
        frame.inTransition = true;
    EXPECT_EQ(chooseKeyFrames(record, {{0, second}}, defaults()).size(), 1U);
}

TEST(KeyFrames, KeepTheMargins) {
    KOR::KeyFrameParameters parameters = defaults();
    parameters.marginFramesBegin = 40;
    parameters.marginFramesEnd = 50;
    FootageRecord record = footage(100);
    const Positions chosen = chooseKeyFrames(record, {{0, 4 * second}}, parameters);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_GE(chosen[0], 40 * step);
    EXPECT_LT(chosen[0], 50 * step);
}

TEST(KeyFrames, FramesThatWereLeftOutAreInTheMarginToo) {
    // The scene lasts from 0 to 100; of its last frames, `missing` have not been looked at.
    for (const auto& [missing, last] : {std::pair(0, 97), std::pair(1, 97), std::pair(2, 97),
                                        std::pair(3, 96), std::pair(50, 49)}) {
        FootageRecord record = footage(200);
        record.frames.erase(record.frames.begin() + 100 - missing, record.frames.begin() + 100);
        for (FrameRecord& frame : record.frames) {
            frame.isKept = frame.positionTicks >= last * step;
            if (frame.positionTicks > last * step) frame.sharpness = 90;
        }
        KOR::KeyFrameParameters parameters = defaults();
        parameters.maxPerScene = 1;
        EXPECT_EQ(chooseKeyFrames(record, {{0, 100 * step}}, parameters), Positions{last * step})
            << missing;
    }
}

TEST(KeyFrames, FramesThatWereLeftOutAtTheBeginAreInTheMarginToo) {
    // From 101 on, `missing` frames have not been looked at.
    for (const auto& [begin, missing, first] :
         {std::tuple(100, 0, 102), std::tuple(100, 1, 102), std::tuple(100, 2, 103),
          std::tuple(100, 50, 151), std::tuple(101, 50, 151), std::tuple(150, 50, 152)}) {
        FootageRecord record = footage(200);
        record.frames.erase(record.frames.begin() + 101, record.frames.begin() + 101 + missing);
        for (FrameRecord& frame : record.frames) {
            frame.isKept = frame.positionTicks <= first * step;
            if (frame.positionTicks < first * step) frame.sharpness = 90;
        }
        KOR::KeyFrameParameters parameters = defaults();
        parameters.maxPerScene = 1;
        EXPECT_EQ(chooseKeyFrames(record, {{begin * step, 200 * step}}, parameters),
                  Positions{first * step})
            << begin << ' ' << missing;
    }
}

TEST(KeyFrames, MarginsAreKeptWhereEverySecondFrameWasLookedAt) {
    FootageRecord record = footage(20);
    std::erase_if(record.frames, [](const FrameRecord& frame) {
        return frame.number % 2 == 1 && frame.number < 19;
    });
    KOR::KeyFrameParameters parameters = defaults();
    parameters.marginFramesBegin = 8;
    parameters.marginFramesEnd = 11;
    EXPECT_EQ(chooseKeyFrames(record, {{0, 20 * step}}, parameters), Positions{8 * step});
}

TEST(KeyFrames, MarginsCountPicturesOfAnyLength) {
    FootageRecord record = footage(20);
    record.frames[1].positionTicks = 1;
    record.frames[18].positionTicks = 20 * second;
    record.frames[19].positionTicks = 30 * second;
    record.durationTicks = 31 * second;
    KOR::KeyFrameParameters parameters = defaults();
    parameters.marginFramesBegin = 3;
    parameters.marginFramesEnd = 16;
    EXPECT_EQ(chooseKeyFrames(record, {{0, record.durationTicks}}, parameters),
              Positions{3 * step});
}

TEST(KeyFrames, MarginsBeginWithinWhatWasLeftOut) {
    // Of the numbers 50 to 59 and 90 to 99 nothing was looked at. The range is from 55 to 95.
    FootageRecord record = footage(200);
    std::erase_if(record.frames, [](const FrameRecord& frame) {
        return (frame.number >= 50 && frame.number < 60) ||
               (frame.number >= 90 && frame.number < 100);
    });
    KOR::KeyFrameParameters parameters = defaults();
    parameters.marginFramesBegin = 10;
    parameters.marginFramesEnd = 29;
    const std::vector<KOR::TickRange> range = {{55 * step, 95 * step}};
    EXPECT_EQ(chooseKeyFrames(record, range, parameters), Positions{65 * step});
    parameters.marginFramesBegin = 34;
    parameters.marginFramesEnd = 5;
    EXPECT_EQ(chooseKeyFrames(record, range, parameters), Positions{89 * step});
}

TEST(KeyFrames, MarginsTooLargeLeaveOneFrame) {
    for (std::size_t count = 1; count <= 4; ++count) {
        const FootageRecord record = footage(count);
        EXPECT_EQ(chooseKeyFrames(record, record.scenes, defaults()).size(), 1U) << count;
    }
    EXPECT_EQ(chooseKeyFrames(footage(5), {{0, 5 * step}}, defaults()), Positions({2 * step}));
}

TEST(KeyFrames, RangeOfOneFrameGetsIt) {
    EXPECT_EQ(chooseKeyFrames(footage(100), {{7 * step, 8 * step}}, defaults()),
              Positions({7 * step}));
}

TEST(KeyFrames, RangeBetweenFramesGetsNone) {
    EXPECT_TRUE(chooseKeyFrames(footage(100), {{7 * step + 1, 8 * step}}, defaults()).empty());
}

TEST(KeyFrames, EmptyReversedAndDistantRangesGetNone) {
    const FootageRecord record = footage(100);
    EXPECT_TRUE(chooseKeyFrames(record, {}, defaults()).empty());
    EXPECT_TRUE(chooseKeyFrames(record, {{step, step}}, defaults()).empty());
    EXPECT_TRUE(chooseKeyFrames(record, {{50 * step, step}}, defaults()).empty());
    EXPECT_TRUE(chooseKeyFrames(record, {{farAway, longAgo}}, defaults()).empty());
    EXPECT_TRUE(chooseKeyFrames(record, {{1000 * step, farAway}}, defaults()).empty());
    EXPECT_TRUE(chooseKeyFrames(record, {{longAgo, 0}}, defaults()).empty());
    EXPECT_TRUE(chooseKeyFrames(footage(0), {{0, second}}, defaults()).empty());
}

TEST(KeyFrames, EndlessRangeIsTheWholeFootage) {
    const FootageRecord record = footage(500);
    EXPECT_EQ(chooseKeyFrames(record, {{longAgo, farAway}}, defaults()),
              chooseKeyFrames(record, {{0, record.durationTicks}}, defaults()));
}

TEST(KeyFrames, EqualRangesGiveNoDuplicates) {
    const FootageRecord record = footage(500);
    const KOR::TickRange range{0, 10 * second};
    EXPECT_EQ(chooseKeyFrames(record, {range, range}, defaults()),
              chooseKeyFrames(record, {range}, defaults()));
}

TEST(KeyFrames, RarePicturesAreFoundByTime) {
    FootageRecord record;
    for (const std::int64_t at : {0, 1, 2, 3, 4, 30, 31}) {
        record.frames.push_back(
            {at * second, 10, 1, false, false, static_cast<std::uint32_t>(record.frames.size())});
    }
    record.durationTicks = 40 * second;
    record.scenes = {{0, 40 * second}};
    const KOR::KeyFrameParameters parameters{6, 4, 0, 4, 0, 0};
    EXPECT_EQ(chooseKeyFrames(record, record.scenes, parameters),
              Positions({2 * second, 4 * second}));
}

RC_GTEST_PROP(KeyFrames, EveryRangeIsServedFromInside, ()) {
    FootageRecord record;
    std::int64_t position = *rc::gen::inRange(0, 100);
    std::uint32_t number = 0;
    for (const int gap :
         *rc::gen::container<std::vector<int>>(rc::gen::inRange(1, 3 * 10'000'000))) {
        record.frames.push_back({position, static_cast<float>(*rc::gen::inRange(0, 50)), 1,
                                 *rc::gen::arbitrary<bool>(), *rc::gen::arbitrary<bool>(), number});
        position += gap;
        number += *rc::gen::inRange<std::uint32_t>(1, 10);
    }
    record.durationTicks = position;
    const auto bound = rc::gen::oneOf(rc::gen::inRange<std::int64_t>(-1000, position + 1000),
                                      rc::gen::arbitrary<std::int64_t>());
    std::vector<KOR::TickRange> ranges;
    for (const auto& [begin, end] :
         *rc::gen::container<std::vector<std::pair<std::int64_t, std::int64_t>>>(
             rc::gen::pair(bound, bound))) {
        ranges.push_back({begin, end});
    }
    const auto parameter =
        rc::gen::oneOf(rc::gen::inRange(-2, 10), rc::gen::arbitrary<std::int32_t>());
    const KOR::KeyFrameParameters parameters{*parameter, *parameter, 0,
                                             *parameter, *parameter, *parameter};

    const Positions chosen = chooseKeyFrames(record, ranges, parameters);

    RC_ASSERT(std::adjacent_find(chosen.begin(), chosen.end(), std::greater_equal<>()) ==
              chosen.end());
    const auto isIn = [](std::int64_t at, const KOR::TickRange& range) {
        return range.begin <= at && at < range.end;
    };
    for (const std::int64_t at : chosen) {
        RC_ASSERT(std::any_of(ranges.begin(), ranges.end(),
                              [&](auto& range) { return isIn(at, range); }));
        RC_ASSERT(std::any_of(record.frames.begin(), record.frames.end(),
                              [&](auto& frame) { return frame.positionTicks == at; }));
    }
    for (const KOR::TickRange& range : ranges) {
        const bool holdsFrame =
            std::any_of(record.frames.begin(), record.frames.end(),
                        [&](auto& frame) { return isIn(frame.positionTicks, range); });
        const bool isServed = std::any_of(chosen.begin(), chosen.end(),
                                          [&](std::int64_t at) { return isIn(at, range); });
        RC_ASSERT(holdsFrame == isServed);
    }
}

}  // namespace
}  // namespace reference_host::scenes
