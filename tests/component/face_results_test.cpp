#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/ScoringTest.h"

namespace fake_host {
namespace {

/// What a finished face task does to the keyframes of a video.
class FaceResults : public ScoringTest {
protected:
    const KOR::FaceDetectFrame large = frameWith({largeFaceAt(0.5, 0.5)});
    const KOR::FaceDetectFrame small = frameWith({smallFaceAt(0.5, 0.5)});
    const KOR::FaceDetectFrame left = frameWith({largeFaceAt(0.15, 0.5)});
    const KOR::FaceDetectFrame none = frameWith({});

    const double ofLarge = faceScoreIn(0.9, true);
    const double ofSmall = faceScoreIn(0.9, false);
    const double ofLeft = faceScoreIn(0.3, true);
    const double ofNone = scoreWithoutFaces;

    /// The scores after a task has found these frames for keyframes that had `before`.
    Scores scored(const Scores& before, const std::vector<KOR::FaceDetectFrame>& frames) {
        FakeTask& finished = found(1, clip().faceFrames(frames));
        haveScored(before);
        EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
        return scores();
    }
};

TEST_F(FaceResults, AddToTheScoresSoFar) {
    EXPECT_EQ(scored({{0.25, 0.125}}, {large, none}), (Scores{{0.25 + ofLarge, 0.125 + ofNone}}));
}

TEST_F(FaceResults, StartAtTheirFirstForEveryScene) {
    EXPECT_EQ(scored({{0, 0}, {0, 0}}, {large, small, left, none}),
              (Scores{{ofLarge, ofSmall}, {ofLarge, ofSmall}}));
}

TEST_F(FaceResults, BeyondTheKeyFramesOfASceneAreIgnored) {
    EXPECT_EQ(scored({{0}, {0, 0, 0}, {}}, {large, small, left}),
              (Scores{{ofLarge}, {ofLarge, ofSmall, ofLeft}, {}}));
}

TEST_F(FaceResults, ThatAreTooFewLeaveTheRestAsItWas) {
    EXPECT_EQ(scored({{0.5, 0.5, 0.5}, {0.5}}, {large}),
              (Scores{{0.5 + ofLarge, 0.5, 0.5}, {0.5 + ofLarge}}));
}

TEST_F(FaceResults, LeaveEverythingElseOfTheKeyFramesAlone) {
    scored({{0}, {0}}, {large});
    EXPECT_EQ(probe().keyFramesOfScences(), (std::vector<std::vector<KOR::KeyFrameScore>>{
                                                {{0, ofLarge, 100}}, {{1, ofLarge, 200}}}));
}

TEST_F(FaceResults, AreFetchedOnceAndLoggedByKeyFrame) {
    scored({{0.5, 0.5}, {0.5, 0.5}}, {large, none, small});
    EXPECT_EQ(trace(), R"(
task0.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[100:0.492000]"
log faceDetectFinishedInternal: "[101:0.420000]"
log faceDetectFinishedInternal: "[200:0.492000]"
log faceDetectFinishedInternal: "[201:0.420000]"
log faceDetectFinishedInternal: "}\n"
)");
}

TEST_F(FaceResults, LogANegativePositionWithItsSign) {
    FakeTask& finished = found(1, clip().faceFrames({small}));
    probe().keyFramesOfScences() = {{{0, 0.0, std::numeric_limits<std::int64_t>::min()}}};
    probe().faceDetectFinishedInternal(&finished);
    EXPECT_EQ(logTexts().at(1), "[-9223372036854775808:0.396000]");
}

TEST_F(FaceResults, ThatAreNoneLogTheFrameOnly) {
    EXPECT_EQ(scored({{0.5}, {0.25}}, {}), (Scores{{0.5}, {0.25}}));
    EXPECT_EQ(trace(), R"(
task0.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "}\n"
)");
}

TEST_F(FaceResults, AreFetchedEvenWithoutScenes) {
    EXPECT_EQ(scored({}, {large}), Scores());
    EXPECT_EQ(trace(), R"(
task0.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "}\n"
)");
}

TEST_F(FaceResults, WithoutAListChangeNothing) {
    host().faults.failEveryMaking(Product::owningList);
    EXPECT_EQ(scored({{0.5}}, {large}), Scores{{0.5}});
    EXPECT_EQ(trace(), R"(
task0.getResultList(3, 0, null, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "}\n"
)");
}

TEST_F(FaceResults, OfATaskThatGivesNoneAreNone) {
    FakeTask& finished = found(1, clip().faceFrames({large}));
    haveScored({{0.5}});
    finished.answer("getResultList", KOR::statusFailed);
    EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(logTexts(), (Lines{"face score result: {", "}\n"}));
}

TEST_F(FaceResults, ThatDoNotFitIntoTheListAreNone) {
    host().faults.failAppends(Product::owningList);
    EXPECT_EQ(scored({{0.5}}, {large}), Scores{{0.5}});
}

TEST_F(FaceResults, KeepTheirPairingAroundALostElement) {
    FakeTask& finished = found(1, clip().faceFrames({small, large, left}));
    haveScored({{0, 0, 0}, {0, 0}});
    finished.loseElement(1);
    EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(scores(), (Scores{{ofSmall, 0.0, ofLeft}, {ofSmall, 0.0}}));
}

TEST_F(FaceResults, CountingTooManyFacesStayWithinTheirBytes) {
    const std::vector<KOR::KorRect> faces(20, largeFaceAt(0.15, 0.5));
    const auto beyond = frameCounting(std::numeric_limits<std::int32_t>::max(), faces);
    EXPECT_EQ(scored({{0, 0}}, {frameCounting(21, faces), beyond}), (Scores{{ofLeft, ofLeft}}));
}

TEST_F(FaceResults, CountingLessThanNothingCountAsWithoutFaces) {
    EXPECT_EQ(scored({{0}}, {frameCounting(-7, {largeFaceAt(0.5, 0.5)})}), Scores{{ofNone}});
}

TEST_F(FaceResults, WithoutALogStillCount) {
    host().faults.loggerAbsent = true;
    EXPECT_EQ(scored({{0}}, {large}), Scores{{ofLarge}});
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(FaceResults, OfANullTaskFailAndChangeNothing) {
    found(1, clip().faceFrames({large}));
    haveScored({{0.5}});
    EXPECT_EQ(probe().faceDetectFinishedInternal(nullptr), KOR::statusFailed);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(trace(), "\n");
}

class FaceFinish : public FaceResults {};

TEST_F(FaceFinish, IsLoggedAfterTheScores) {
    FakeTask& finished = found(1, clip().faceFrames({left}));
    haveScored({{0}});
    EXPECT_EQ(probe().faceDetectFinished(&finished), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[100:0.276000]"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
)");
}

TEST_F(FaceFinish, NamesTheMaterialByItsIndex) {
    FakeTask& finished = found(1, clip());
    insert(clip());
    probe().moveTo(1, 0);
    probe().faceDetectFinished(&finished);
    EXPECT_EQ(logTexts().back(), "----Finish Face Detect---素材idx: 1\n");
}

TEST_F(FaceFinish, OfANullTaskFailsAndIsLogged) {
    found(1, clip());
    haveScored({{0.5}});
    EXPECT_EQ(probe().faceDetectFinished(nullptr), KOR::statusFailed);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(logTexts(), Lines{"----Finish Face Detect---素材idx: 0\n"});
}

}  // namespace
}  // namespace fake_host
