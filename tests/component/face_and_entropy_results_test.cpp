#include <vector>

#include <gtest/gtest.h>

#include "tests/component/ScoringTest.h"

namespace fake_host {
namespace {

/// What a finished task of both kinds does.
class FaceAndEntropyResults : public ScoringTest {
protected:
    static MediaSpec withBoth(MediaSpec spec) {
        return spec.faceFrames({frameWith({smallFaceAt(0.5, 0.5)}), frameWith({})})
            .entropies({{7, 6.1}, {8, 7.3}});
    }
};

TEST_F(FaceAndEntropyResults, AddFacesThenEntropy) {
    FakeTask& finished = found(7, withBoth(clip()));
    const double duration = 0.1200000003;
    haveScored({{duration, duration}, {duration}});
    EXPECT_EQ(probe().faceAndEntropyAnalysisFinished(&finished), KOR::statusOk);
    const double first = duration + faceScoreIn(0.9, false) + 6.1 * 0.125 * 0.1;
    const double second = duration + scoreWithoutFaces + 7.3 * 0.125 * 0.1;
    // The other order would round to another sum.
    ASSERT_NE(first, duration + 6.1 * 0.125 * 0.1 + faceScoreIn(0.9, false));
    EXPECT_EQ(scores(), (Scores{{first, second}, {first}}));
}

TEST_F(FaceAndEntropyResults, AreLoggedEachThenTogether) {
    FakeTask& finished = found(7, withBoth(clip()));
    haveScored({{0, 0}, {0}});
    probe().faceAndEntropyAnalysisFinished(&finished);
    EXPECT_EQ(trace(), R"(
task0.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[100:0.396000]"
log faceDetectFinishedInternal: "[101:0.420000]"
log faceDetectFinishedInternal: "[200:0.396000]"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log entropyCalculateFinishedInternal: "entropy score result: {"
task0.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[7:0.076250]"
log entropyCalculateFinishedInternal: "[8:0.091250]"
task0.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[7:0.076250]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 0\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 0\n"
)");
}

TEST_F(FaceAndEntropyResults, OfAPhotoAreItsFacesOnly) {
    FakeTask& finished = found(7, withBoth(photo("photo.jpg")));
    probe().addDefaultResult(1);
    haveScored({{0.5}});
    EXPECT_EQ(probe().faceAndEntropyAnalysisFinished(&finished), KOR::statusOk);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(trace(), R"(
task0.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 0\n"
)");
}

TEST_F(FaceAndEntropyResults, NameTheMaterialByItsIndex) {
    FakeTask& finished = found(7, clip());
    insert(clip());
    probe().moveTo(1, 0);
    probe().faceAndEntropyAnalysisFinished(&finished);
    EXPECT_EQ(logTexts(),
              (Lines{"face score result: {", "}\n", "----Finish Face Detect---素材idx: 1\n",
                     "entropy score result: {", "}\n", "----Finish Entropy Value---素材idx: 1\n",
                     "----Finish face Detect and entropy calculate---素材idx: 1\n"}));
}

TEST_F(FaceAndEntropyResults, OfANullTaskFailAndLogEveryFinish) {
    found(7, withBoth(clip()));
    haveScored({{0.5}});
    EXPECT_EQ(probe().faceAndEntropyAnalysisFinished(nullptr), KOR::statusFailed);
    EXPECT_EQ(scores(), Scores{{0.5}});
    EXPECT_EQ(logTexts(), (Lines{"----Finish Face Detect---素材idx: 0\n",
                                 "----Finish Entropy Value---素材idx: 0\n",
                                 "----Finish face Detect and entropy calculate---素材idx: 0\n"}));
}

TEST_F(FaceAndEntropyResults, OfANullTaskForAPhotoFailWithoutEntropy) {
    found(7, withBoth(photo("photo.jpg")));
    EXPECT_EQ(probe().faceAndEntropyAnalysisFinished(nullptr), KOR::statusFailed);
    EXPECT_EQ(logTexts(), (Lines{"----Finish Face Detect---素材idx: 0\n",
                                 "----Finish face Detect and entropy calculate---素材idx: 0\n"}));
}

TEST_F(FaceAndEntropyResults, WithoutAnyListChangeNothing) {
    FakeTask& finished = found(7, withBoth(clip()));
    haveScored({{0.5}, {0.25}});
    host().faults.failEveryMaking(Product::owningList);
    EXPECT_EQ(probe().faceAndEntropyAnalysisFinished(&finished), KOR::statusOk);
    EXPECT_EQ(scores(), (Scores{{0.5}, {0.25}}));
    EXPECT_EQ(finished.askedFor(KOR::analysisTypeFace), 1);
    EXPECT_EQ(finished.askedFor(KOR::analysisTypeEntropy), 2);
}

TEST_F(FaceAndEntropyResults, OfATaskWithoutEntropyAreItsFaces) {
    FakeTask& finished = found(1, withBoth(clip()));
    haveScored({{0, 0}});
    EXPECT_EQ(probe().faceAndEntropyAnalysisFinished(&finished), KOR::statusOk);
    EXPECT_EQ(scores(), (Scores{{faceScoreIn(0.9, false), scoreWithoutFaces}}));
}

}  // namespace
}  // namespace fake_host
