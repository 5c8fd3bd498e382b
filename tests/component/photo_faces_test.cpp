#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"
#include "tests/component/ScoringTest.h"

namespace fake_host {
namespace {

using Sides = std::vector<double>;

/// What a finished face task does to the record of a photo.
class PhotoFaces : public ScoringTest {
protected:
    const KOR::KorRect small{0.25, 0.125, 0.0625, 0.03125};
    const KOR::KorRect large{0.5, 0.25, 0.375, 0.4375};

    FakeTask& foundInPhoto(const std::vector<KOR::FaceDetectFrame>& frames) {
        FakeTask& finished = found(1, photo("photo.jpg").faceFrames(frames));
        probe().addDefaultResult(1);
        return finished;
    }

    /// The rectangle of the last record.
    Sides face() {
        const KOR::KorRect rect = probe().results().back().faceRectOfPhoto;
        return {rect.x, rect.y, rect.width, rect.height};
    }

    Sides faceAfter(const std::vector<KOR::FaceDetectFrame>& frames) {
        FakeTask& finished = foundInPhoto(frames);
        EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
        return face();
    }
};

const Sides noFace{0.0, 0.0, 0.0, 0.0};

TEST_F(PhotoFaces, GiveTheFirstRectangleNotTheLargest) {
    EXPECT_EQ(faceAfter({frameWith({small, large})}), (Sides{0.25, 0.125, 0.0625, 0.03125}));
}

TEST_F(PhotoFaces, OfLaterFramesDoNotCount) {
    EXPECT_EQ(faceAfter({frameWith({small}), frameWith({large})}),
              (Sides{0.25, 0.125, 0.0625, 0.03125}));
}

TEST_F(PhotoFaces, BehindAFrameWithoutFacesDoNotCount) {
    EXPECT_EQ(faceAfter({frameWith({}), frameWith({large})}), noFace);
}

TEST_F(PhotoFaces, ThatAreNoneLeaveTheRecordAsItWas) {
    EXPECT_EQ(faceAfter({frameWith({})}), noFace);
}

TEST_F(PhotoFaces, OfANegativeCountLeaveTheRecordAsItWas) {
    EXPECT_EQ(faceAfter({frameCounting(-1, {large})}), noFace);
}

TEST_F(PhotoFaces, WithoutAFrameLeaveTheRecordAsItWas) {
    EXPECT_EQ(faceAfter({}), noFace);
}

TEST_F(PhotoFaces, BeyondTwentyStillGiveTheFirst) {
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(faceAfter({frameCounting(highest, {small})}), (Sides{0.25, 0.125, 0.0625, 0.03125}));
}

TEST_F(PhotoFaces, AreTakenOverAsTheyAre) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(faceAfter({frameWith({{-0.5, infinity, 0.0, -2.0}})}),
              (Sides{-0.5, infinity, 0.0, -2.0}));
}

TEST_F(PhotoFaces, ChangeNothingElseOfTheRecord) {
    MediaSpec shown = photo("photo.jpg").mediaLength(1).faceFrames({frameWith({large})});
    shown.durationTicks = 10;
    FakeTask& finished = found(1, shown);
    probe().addDefaultResult(1);
    probe().faceDetectFinishedInternal(&finished);
    const KOR::MaterialAnalysisResult record = probe().results().at(0);
    EXPECT_EQ(record.score, 1.0);
    EXPECT_EQ(record.begin, 0);
    EXPECT_EQ(record.end, 10);
    EXPECT_EQ(record.posOfMaxScore, 5);
}

TEST_F(PhotoFaces, GoToTheLastRecordOnly) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    probe().addDefaultResult(1);
    EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
    ASSERT_EQ(probe().results().size(), 2U);
    EXPECT_EQ(probe().results()[0].faceRectOfPhoto.width, 0.0);
    EXPECT_EQ(probe().results()[1].faceRectOfPhoto.width, 0.375);
}

TEST_F(PhotoFaces, ScoreNoKeyFramesAndLogNothing) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    haveScored({{0.5}});
    probe().faceDetectFinishedInternal(&finished);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(trace(), "\ntask0.getResultList(3, 0, list, 0)\n");
}

TEST_F(PhotoFaces, AreLoggedByTheirFinishOnly) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    EXPECT_EQ(probe().faceDetectFinished(&finished), KOR::statusOk);
    EXPECT_EQ(logTexts(), Lines{"----Finish Face Detect---素材idx: 0\n"});
}

TEST_F(PhotoFaces, WithoutAListChangeNothing) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    host().faults.failEveryMaking(Product::owningList);
    EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(face(), noFace);
    EXPECT_EQ(trace(), "\ntask0.getResultList(3, 0, null, 0)\n");
}

TEST_F(PhotoFaces, OfATaskThatGivesNoneAreNone) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    finished.answer("getResultList", KOR::statusFailed);
    EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(face(), noFace);
}

TEST_F(PhotoFaces, OfALostFrameAreNone) {
    FakeTask& finished = foundInPhoto({frameWith({large}), frameWith({small})});
    finished.loseElement(0);
    EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(face(), noFace);
}

TEST_F(PhotoFaces, WithoutARecordAreDropped) {
    FakeTask& finished = found(1, photo("photo.jpg").faceFrames({frameWith({large})}));
    EXPECT_EQ(probe().faceDetectFinishedInternal(&finished), KOR::statusOk);
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(PhotoFaces, OfAPhotoClearedMeanwhileAreDropped) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    finished.onCall("getResultList", [&] { component().clearMaterials(); });
    EXPECT_EQ(probe().faceDetectFinished(&finished), KOR::statusOk);
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(PhotoFaces, OfANullTaskFailAndChangeNothing) {
    foundInPhoto({frameWith({large})});
    EXPECT_EQ(probe().faceDetectFinishedInternal(nullptr), KOR::statusFailed);
    EXPECT_EQ(face(), noFace);
    EXPECT_EQ(trace(), "\n");
}

TEST_F(PhotoFaces, AreThoseOfEveryCodeThatIsNoVideo) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    for (const std::uint32_t still : {0U, 1U, 4U, 16U, 0x40002U}) {
        component().clearMaterials();
        insert(photo("photo.jpg").typeCode(still));
        probe().addDefaultResult(1);
        probe().faceDetectFinishedInternal(&finished);
        EXPECT_EQ(face(), (Sides{0.5, 0.25, 0.375, 0.4375})) << still;
    }
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(PhotoFaces, OfAVideoGoIntoNoRecord) {
    FakeTask& finished = foundInPhoto({frameWith({large})});
    for (const std::uint32_t timeBased : {2U, 8U, 0x40000U}) {
        component().clearMaterials();
        insert(clip().typeCode(timeBased));
        probe().addDefaultResult(0);
        haveScored({{0}});
        probe().faceDetectFinishedInternal(&finished);
        EXPECT_EQ(face(), noFace) << timeBased;
        EXPECT_EQ(scores(), Scores{{faceScoreIn(0.9, true)}}) << timeBased;
    }
}

/// Materials that are cleared while a face task runs on them.
class FacesOfClearedMaterials : public RunTest {
protected:
    /// Starts a run of the kinds, clears the materials inside an event of the task that the kinds
    /// end with, and lets that task finish.
    std::string traceOfClearing(const std::vector<std::int32_t>& kinds, const MediaSpec& spec) {
        MediaSpec withFaces = spec;
        insert(withFaces.faceFrames({frameWith({largeFaceAt(0.5, 0.5)})}));
        setParam("photoNeedAnalysis", 1);
        useKinds(kinds);
        component().start();
        while (!task(kinds.size() - 1).running())
            host().runningTask()->finish();
        journal();
        listener.onEvent = [&](std::uint32_t event) {
            if (event == KOR::taskEventProgress) component().clearMaterials();
        };
        task(kinds.size() - 1).progress(50);
        task(kinds.size() - 1).finish();
        EXPECT_TRUE(probe().results().empty());
        return trace();
    }
};

TEST_F(FacesOfClearedMaterials, OfAPhotoAreDropped) {
    EXPECT_EQ(traceOfClearing({4, 1}, photo("photo.jpg")), R"(
listener: event 1, 50
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(FacesOfClearedMaterials, OfAPhotoWithTheCombinedKindAreDropped) {
    EXPECT_EQ(traceOfClearing({6, 7}, photo("photo.jpg")), R"(
listener: event 1, 50
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 0\n"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(FacesOfClearedMaterials, OfAVideoAreDroppedLikeThoseOfAPhoto) {
    const MediaSpec clip = video("clip.mp4", 100 * second).keyFrames({50 * second});
    EXPECT_EQ(traceOfClearing({6, 7}, clip), R"(
listener: event 1, 75
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 0\n"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
    EXPECT_EQ(probe().keyFramesOfScences().at(0).at(0).score, 1000000001 * 0.3 / 1000000000);
}

}  // namespace
}  // namespace fake_host
