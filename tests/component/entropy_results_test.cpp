#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "modules/BusinessLayer/MaterialAnalysis/EntropyScore.h"
#include "tests/component/ScoringTest.h"

namespace fake_host {
namespace {

TEST(EntropyScore, OfEightBitsIsOneTenth) {
    EXPECT_EQ(KOR::entropyScore(8.0), 0.1);
}

TEST(EntropyScore, OfFourBitsIsOneTwentieth) {
    EXPECT_EQ(KOR::entropyScore(4.0), 0.05);
}

TEST(EntropyScore, OfAnEvenAreaIsZero) {
    EXPECT_EQ(KOR::entropyScore(0.0), 0.0);
}

TEST(EntropyScore, IsComputedInTheOrderWritten) {
    for (double bits = -1.0; bits < 9.0; bits += 0.01)
        EXPECT_EQ(KOR::entropyScore(bits), (bits * 0.125) * 0.1) << bits;
    // Only where the first product is rounded does the order show.
    const double tiny = 37 * std::numeric_limits<double>::denorm_min();
    ASSERT_NE((tiny * 0.125) * 0.1, (tiny * 0.1) * 0.125);
    ASSERT_NE((tiny * 0.125) * 0.1, tiny * 0.0125);
    EXPECT_EQ(KOR::entropyScore(tiny), (tiny * 0.125) * 0.1);
}

TEST(EntropyScore, IsNeitherClampedNorChecked) {
    EXPECT_EQ(KOR::entropyScore(-16.0), -0.2);
    EXPECT_EQ(KOR::entropyScore(800.0), 10.0);
    EXPECT_EQ(KOR::entropyScore(std::numeric_limits<double>::infinity()),
              std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(KOR::entropyScore(std::numeric_limits<double>::quiet_NaN())));
}

double scoreOf(double bits) {
    return (bits * 0.125) * 0.1;
}

/// What a finished entropy task does to the keyframes of a video.
class EntropyResults : public ScoringTest {
protected:
    /// The scores after a task has found these samples for keyframes that had `before`.
    Scores scored(const Scores& before, const std::vector<KOR::EntropySample>& samples) {
        FakeTask& finished = found(5, clip().entropies(samples));
        haveScored(before);
        EXPECT_EQ(probe().entropyCalculateFinishedInternal(&finished), KOR::statusOk);
        return scores();
    }
};

TEST_F(EntropyResults, AddToTheScoresSoFar) {
    EXPECT_EQ(scored({{0.25, 0.125}}, {{1, 7.3}, {2, 0.0}}),
              (Scores{{0.25 + scoreOf(7.3), 0.125}}));
}

TEST_F(EntropyResults, StartAtTheirFirstForEveryScene) {
    EXPECT_EQ(scored({{0, 0}, {0, 0}}, {{1, 7.3}, {2, 6.1}, {3, 5.7}, {4, 2.2}}),
              (Scores{{scoreOf(7.3), scoreOf(6.1)}, {scoreOf(7.3), scoreOf(6.1)}}));
}

TEST_F(EntropyResults, BeyondTheKeyFramesOfASceneAreIgnored) {
    EXPECT_EQ(scored({{0, 0}, {0, 0}, {}, {0, 0, 0}}, {{1, 7.3}, {2, 6.1}, {3, 5.7}}),
              (Scores{{scoreOf(7.3), scoreOf(6.1)},
                      {scoreOf(7.3), scoreOf(6.1)},
                      {},
                      {scoreOf(7.3), scoreOf(6.1), scoreOf(5.7)}}));
}

TEST_F(EntropyResults, ThatAreTooFewLeaveTheRestAsItWas) {
    EXPECT_EQ(scored({{0.5, 0.5, 0.5}, {0.5}}, {{1, 4.0}}),
              (Scores{{0.5 + 0.05, 0.5, 0.5}, {0.5 + 0.05}}));
}

TEST_F(EntropyResults, LeaveEverythingElseOfTheKeyFramesAlone) {
    scored({{0}, {0}}, {{77, 8.0}});
    EXPECT_EQ(probe().keyFramesOfScences(),
              (std::vector<std::vector<KOR::KeyFrameScore>>{{{0, 0.1, 100}}, {{1, 0.1, 200}}}));
}

TEST_F(EntropyResults, AreFetchedForEverySceneAndLoggedByTheirOwnPosition) {
    scored({{0.5, 0.5}, {}, {0.5}}, {{-7, 8.0}, {8, 4.0}, {9, 1.0}});
    EXPECT_EQ(trace(), R"(
log entropyCalculateFinishedInternal: "entropy score result: {"
task0.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[-7:0.100000]"
log entropyCalculateFinishedInternal: "[8:0.050000]"
task0.getResultList(8, 0, list, 0)
task0.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[-7:0.100000]"
log entropyCalculateFinishedInternal: "}\n"
)");
}

TEST_F(EntropyResults, WithoutScenesAreNotFetched) {
    EXPECT_EQ(scored({}, {{1, 8.0}}), Scores());
    EXPECT_EQ(trace(), R"(
log entropyCalculateFinishedInternal: "entropy score result: {"
log entropyCalculateFinishedInternal: "}\n"
)");
}

TEST_F(EntropyResults, ThatAreNoneLogTheFrameOnly) {
    EXPECT_EQ(scored({{0.5}, {0.25}}, {}), (Scores{{0.5}, {0.25}}));
    EXPECT_EQ(logTexts(), (Lines{"entropy score result: {", "}\n"}));
}

TEST_F(EntropyResults, WithoutAnyListChangeNothing) {
    host().faults.failEveryMaking(Product::owningList);
    EXPECT_EQ(scored({{0.5}}, {{1, 8.0}}), Scores{{0.5}});
    EXPECT_EQ(trace(), R"(
log entropyCalculateFinishedInternal: "entropy score result: {"
task0.getResultList(8, 0, null, 0)
log entropyCalculateFinishedInternal: "}\n"
)");
}

TEST_F(EntropyResults, WithoutOneListMissThatSceneOnly) {
    host().faults.failMaking(Product::owningList, 2);
    EXPECT_EQ(scored({{0}, {0}, {0}}, {{1, 8.0}}), (Scores{{0.1}, {0.0}, {0.1}}));
}

TEST_F(EntropyResults, OfATaskThatGivesNoneAreNone) {
    FakeTask& finished = found(5, clip().entropies({{1, 8.0}}));
    haveScored({{0.5}});
    finished.answer("getResultList", KOR::statusFailed);
    EXPECT_EQ(probe().entropyCalculateFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(logTexts(), (Lines{"entropy score result: {", "}\n"}));
}

TEST_F(EntropyResults, ThatDoNotFitIntoTheListAreNone) {
    host().faults.failAppends(Product::owningList);
    EXPECT_EQ(scored({{0.5}}, {{1, 8.0}}), Scores{{0.5}});
}

TEST_F(EntropyResults, KeepTheirPairingAroundALostElement) {
    FakeTask& finished = found(5, clip().entropies({{1, 7.3}, {2, 6.1}, {3, 5.7}}));
    haveScored({{0, 0, 0}, {0, 0}});
    finished.loseElement(1);
    EXPECT_EQ(probe().entropyCalculateFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(scores(), (Scores{{scoreOf(7.3), 0.0, scoreOf(5.7)}, {scoreOf(7.3), 0.0}}));
}

TEST_F(EntropyResults, BeyondAllBoundsAreLoggedInFull) {
    constexpr double highest = std::numeric_limits<double>::max();
    constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max();
    scored({{0, 0}}, {{last, -highest}, {0, std::numeric_limits<double>::infinity()}});
    std::string digits(400, '\0');
    const int length = std::snprintf(digits.data(), digits.size(), "%f", scoreOf(-highest));
    digits.resize(static_cast<std::size_t>(length));
    EXPECT_EQ(logTexts().at(1), "[9223372036854775807:" + digits + "]");
    EXPECT_EQ(logTexts().at(2), "[0:inf]");
}

TEST_F(EntropyResults, WithoutALogStillCount) {
    host().faults.severityDisabled = true;
    EXPECT_EQ(scored({{0}}, {{1, 8.0}}), Scores{{0.1}});
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(EntropyResults, OfANullTaskFailAndChangeNothing) {
    found(5, clip().entropies({{1, 8.0}}));
    haveScored({{0.5}});
    EXPECT_EQ(probe().entropyCalculateFinishedInternal(nullptr), KOR::statusFailed);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(trace(), "\n");
}

class EntropyFinish : public EntropyResults {};

TEST_F(EntropyFinish, IsLoggedAfterTheScores) {
    FakeTask& finished = found(5, clip().entropies({{9, 4.0}}));
    haveScored({{0}});
    EXPECT_EQ(probe().entropyCalculateFinished(&finished), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
log entropyCalculateFinishedInternal: "entropy score result: {"
task0.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[9:0.050000]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 0\n"
)");
}

TEST_F(EntropyFinish, OfANullTaskFailsAndIsLogged) {
    found(5, clip());
    haveScored({{0.5}});
    EXPECT_EQ(probe().entropyCalculateFinished(nullptr), KOR::statusFailed);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(logTexts(), Lines{"----Finish Entropy Value---素材idx: 0\n"});
}

}  // namespace
}  // namespace fake_host
