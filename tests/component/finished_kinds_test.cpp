#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

/// What a run does when a task of one kind has finished.
class FinishedKind : public RunTest {
protected:
    static MediaSpec footage() {
        return video("clip.mp4", 100 * second)
            .keyFrames({50 * second})
            .faceFrames({frameWith({largeFaceAt(0.5, 0.5)})})
            .entropies({{50 * second, 8.0}})
            .blurs({{50 * second, 1000.0}});
    }

    /// Lets a task of the kind be the first of two, and its step be the next one.
    void useKind(std::int32_t kind) {
        insert(footage());
        useKinds({kind, 4});
        task(0).setSource(static_cast<FakeMedia*>(probe().materials()[0]), 0, 0);
        probe().moveTo(0, 0);
        probe().keyFramesOfScences() = {{{0, 0.25, 50 * second}}};
        host().takeJournal();
    }

    double score() { return probe().keyFramesOfScences().at(0).at(0).score; }

    /// The lines that say that something finished.
    Lines finishLines() const {
        Lines lines;
        for (const std::string& text : logTexts()) {
            if (text.rfind("----Finish", 0) == 0) lines.push_back(text);
        }
        return lines;
    }
};

struct KindAndHandler {
    std::int32_t kind;
    Lines finishLines;
    double scoreAfter;
};

std::ostream& operator<<(std::ostream& out, const KindAndHandler& expected) {
    return out << "kind " << expected.kind;
}

class FinishedKindWithHandler : public FinishedKind,
                                public ::testing::WithParamInterface<KindAndHandler> {};

TEST_P(FinishedKindWithHandler, IsTakenInByItsHandler) {
    useKind(GetParam().kind);
    EXPECT_EQ(probe().onTaskFinished(), KOR::statusOk);
    EXPECT_EQ(finishLines(), GetParam().finishLines);
    EXPECT_EQ(score(), GetParam().scoreAfter);
    EXPECT_TRUE(task(1).running());
}

TEST_P(FinishedKindWithHandler, WithoutItsInterfaceFailsButGoesOn) {
    useKind(GetParam().kind);
    task(0).hideAnalysisInterface();
    EXPECT_EQ(probe().onTaskFinished(), KOR::statusFailed);
    EXPECT_EQ(finishLines(), GetParam().finishLines);
    EXPECT_EQ(score(), 0.25);
    EXPECT_TRUE(task(1).running());
}

TEST_P(FinishedKindWithHandler, FailsWhereTheNextDoesNotStart) {
    useKind(GetParam().kind);
    task(1).answer("start", KOR::statusFailed);
    EXPECT_EQ(probe().onTaskFinished(), KOR::statusFailed);
    EXPECT_EQ(score(), GetParam().scoreAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, FinishedKindWithHandler,
    testing::Values(
        KindAndHandler{1, {"----Finish Face Detect---素材idx: 0\n"}, 0.25 + faceScoreIn(0.9, true)},
        KindAndHandler{5, {"----Finish Entropy Value---素材idx: 0\n"}, 0.25 + 0.1},
        KindAndHandler{
            7,
            {"----Finish Face Detect---素材idx: 0\n", "----Finish Entropy Value---素材idx: 0\n",
             "----Finish face Detect and entropy calculate---素材idx: 0\n"},
            0.25 + faceScoreIn(0.9, true) + 0.1}));

class FinishedBlur : public FinishedKind {};

TEST_F(FinishedBlur, FailsWithoutAHandlerButGoesOn) {
    useKind(2);
    EXPECT_EQ(probe().onTaskFinished(), KOR::statusFailed);
    EXPECT_EQ(finishLines(), Lines());
    EXPECT_EQ(score(), 0.25);
    EXPECT_TRUE(task(1).running());
}

TEST_F(FinishedBlur, IsNeverAskedForItsResults) {
    useKind(2);
    probe().onTaskFinished();
    for (const std::int32_t kind : {1, 2, 3, 8, 9})
        EXPECT_EQ(task(0).askedFor(kind), 0) << kind;
}

TEST_F(FinishedBlur, AsTheLastFailsThoughRecordsAreBuilt) {
    insert(footage());
    useKinds({4, 3, 2});
    component().start();
    task(0).finish();
    task(1).finish();
    EXPECT_EQ(probe().onTaskFinished(), KOR::statusFailed);
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].posOfMaxScore, 50 * second);
    EXPECT_EQ(probe().results()[0].score, 1000000001 * 0.3 / 1000000000);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

TEST_F(FinishedBlur, AloneEndsTheRunWithoutRecords) {
    insert(footage());
    useKinds({2});
    runToEnd();
    EXPECT_TRUE(probe().results().empty());
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

/// The first kind of the second video, whose keyframes are not yet known.
class FinishedTooEarly : public FinishedKind {};

TEST_F(FinishedTooEarly, ScoresTheBestKeyFramesOfTheVideoBefore) {
    insert(footage());
    insert(video("next.mp4", 100 * second)
               .keyFrames({70 * second})
               .faceFrames({frameWith({smallFaceAt(0.5, 0.5)})}));
    useKinds({1, 4, 3});
    runToEnd();
    const Lines logged = logTexts();
    EXPECT_EQ(std::count(logged.begin(), logged.end(), "[500000000:0.396000]"), 1);
    ASSERT_EQ(probe().results().size(), 2U);
    // Every video's keyframes begin at nothing when they are found.
    EXPECT_EQ(probe().results()[1].posOfMaxScore, 70 * second);
    EXPECT_EQ(probe().results()[1].score, 1000000001 * 0.3 / 1000000000);
}

/// Scores of three kinds, whose sum depends on the order in which they are added.
class SumOfScores : public FinishedKind {
protected:
    double scoreAfter(const std::vector<std::int32_t>& kinds) {
        insert(video("clip.mp4", 100 * second)
                   .keyFrames({50 * second})
                   .faceFrames({frameWith({largeFaceAt(0.15, 0.5)})})
                   .entropies({{50 * second, 5.1}}));
        useKinds(kinds);
        runToEnd();
        return probe().results().at(0).score;
    }

    const double duration = 1000000001 * 0.3 / 1000000000;
    const double face = faceScoreIn(0.3, true);
    const double entropy = 5.1 * 0.125 * 0.1;
};

TEST_F(SumOfScores, FollowsTheOrderOfTheTasks) {
    ASSERT_NE(duration + face + entropy, duration + entropy + face);
    EXPECT_EQ(scoreAfter({4, 3, 1, 5}), duration + face + entropy);
}

TEST_F(SumOfScores, FollowsTheOtherOrderOfTheTasks) {
    EXPECT_EQ(scoreAfter({4, 3, 5, 1}), duration + entropy + face);
}

TEST_F(SumOfScores, CountsAKindAsOftenAsItIsListed) {
    EXPECT_EQ(scoreAfter({6, 1, 1}), duration + face + face);
}

}  // namespace
}  // namespace fake_host
