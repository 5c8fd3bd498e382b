#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/FakeHost.h"
#include "fake_host/faces.h"
#include "host/geometry.h"
#include "modules/BusinessLayer/MaterialAnalysis/FaceScore.h"

namespace fake_host {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// The regions' scores.
constexpr double middle = 0.9;
constexpr double inner = 0.3;
constexpr double outer = 0.1;

double scoreOf(const std::vector<KOR::KorRect>& faces) {
    return KOR::faceScoreOfFrame(frameWith(faces));
}

class FaceScore : public ::testing::Test {
protected:
    FaceScore() { host().reset(); }
    ~FaceScore() override { host().reset(); }
};

TEST_F(FaceScore, WithoutFacesIsFixed) {
    EXPECT_EQ(scoreOf({}), 0.42);
}

TEST_F(FaceScore, OfANegativeCountIsThatWithoutFaces) {
    const std::vector<KOR::KorRect> faces{largeFaceAt(0.5, 0.5)};
    EXPECT_EQ(KOR::faceScoreOfFrame(frameCounting(-1, faces)), 0.42);
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(KOR::faceScoreOfFrame(frameCounting(lowest, faces)), 0.42);
}

TEST_F(FaceScore, OfALargeFaceInTheMiddle) {
    EXPECT_EQ(scoreOf({faceAt(0.5, 0.5, 0.2, 0.2)}), (0.9 * 0.6 + 0.7 * 0.4) * 0.6);
    EXPECT_NEAR(scoreOf({faceAt(0.5, 0.5, 0.2, 0.2)}), 0.492, 1e-12);
}

TEST_F(FaceScore, OfASmallFaceInTheMiddle) {
    EXPECT_EQ(scoreOf({faceAt(0.5, 0.5, 0.05, 0.05)}), (0.9 * 0.6 + 0.3 * 0.4) * 0.6);
    EXPECT_NEAR(scoreOf({faceAt(0.5, 0.5, 0.05, 0.05)}), 0.396, 1e-12);
}

TEST_F(FaceScore, CountsTheRightSideAsTheMiddle) {
    EXPECT_EQ(scoreOf({largeFaceAt(0.85, 0.5)}), scoreOf({largeFaceAt(0.5, 0.5)}));
    EXPECT_EQ(scoreOf({smallFaceAt(0.95, 0.5)}), scoreOf({smallFaceAt(0.5, 0.5)}));
}

TEST_F(FaceScore, BelowTheMiddleIsLow) {
    EXPECT_EQ(scoreOf({largeFaceAt(0.5, 0.95)}), (0.1 * 0.6 + 0.7 * 0.4) * 0.6);
    EXPECT_EQ(scoreOf({smallFaceAt(0.5, 0.95)}), (0.1 * 0.6 + 0.3 * 0.4) * 0.6);
    EXPECT_NEAR(scoreOf({largeFaceAt(0.5, 0.95)}), 0.204, 1e-12);
    EXPECT_NEAR(scoreOf({smallFaceAt(0.5, 0.95)}), 0.108, 1e-12);
}

TEST_F(FaceScore, WithoutFacesLiesBetweenLargeAndSmallInTheMiddle) {
    EXPECT_GT(scoreOf({largeFaceAt(0.5, 0.5)}), scoreOf({}));
    EXPECT_LT(scoreOf({smallFaceAt(0.5, 0.5)}), scoreOf({}));
    EXPECT_LT(scoreOf({largeFaceAt(0.15, 0.5)}), scoreOf({}));
}

/// Where a centre lies, and the score of its region.
struct Centre {
    double x;
    double y;
    double regionScore;
};

std::ostream& operator<<(std::ostream& out, const Centre& centre) {
    return out << "(" << centre.x << ", " << centre.y << ")";
}

class FaceScoreByCentre : public ::testing::TestWithParam<Centre> {
protected:
    FaceScoreByCentre() { host().reset(); }

    /// The score of a face whose centre is exactly there.
    static double scoreAround(const KOR::KorRect& face) {
        EXPECT_EQ(KOR::centerPoint(face).x, GetParam().x);
        EXPECT_EQ(KOR::centerPoint(face).y, GetParam().y);
        return scoreOf({face});
    }
};

TEST_P(FaceScoreByCentre, IsThatOfTheFirstRegionAroundIt) {
    const auto [x, y, region] = GetParam();
    EXPECT_EQ(scoreAround(largeFaceAt(x, y)), (region * 0.6 + 0.7 * 0.4) * 0.6);
    EXPECT_EQ(scoreAround(smallFaceAt(x, y)), (region * 0.6 + 0.3 * 0.4) * 0.6);
}

const double belowOneFifth = std::nextafter(0.2, 0.0);
const double belowOneTenth = std::nextafter(0.1, 0.0);
const double belowNineTenths = std::nextafter(0.9, 0.0);
const double aboveNineTenths = std::nextafter(0.9, 1.0);

INSTANTIATE_TEST_SUITE_P(Inside, FaceScoreByCentre,
                         testing::Values(Centre{0.5, 0.5, middle}, Centre{0.3, 0.1, middle},
                                         Centre{0.85, 0.5, middle}, Centre{0.95, 0.5, middle},
                                         Centre{0.15, 0.5, inner}, Centre{0.05, 0.5, outer},
                                         Centre{0.5, 0.95, outer}, Centre{0.15, 0.95, outer},
                                         Centre{0.05, 0.95, outer}, Centre{0.95, 0.95, outer}));

INSTANTIATE_TEST_SUITE_P(
    OnEdges, FaceScoreByCentre,
    testing::Values(Centre{0.2, 0.5, middle}, Centre{belowOneFifth, 0.5, inner},
                    Centre{0.1, 0.5, inner}, Centre{belowOneTenth, 0.5, outer},
                    Centre{0.0, 0.5, outer}, Centre{0.8, 0.5, middle}, Centre{0.9, 0.5, middle},
                    Centre{1.0, 0.5, middle}, Centre{0.5, 0.0, middle}, Centre{0.5, 0.9, middle},
                    Centre{0.5, belowNineTenths, middle}, Centre{0.5, aboveNineTenths, outer},
                    Centre{0.15, 0.9, inner}, Centre{0.15, aboveNineTenths, outer},
                    Centre{0.5, 1.0, outer}, Centre{0.0, 0.0, outer}, Centre{1.0, 1.0, outer},
                    Centre{0.0, 1.0, outer}, Centre{1.0, 0.0, middle}, Centre{0.2, 0.9, middle},
                    Centre{0.1, 0.9, inner}));

TEST_F(FaceScore, OutsideThePictureIsThatWithoutFaces) {
    for (const KOR::KorRect& face :
         {largeFaceAt(-0.25, 0.5), largeFaceAt(1.25, 0.5), largeFaceAt(0.5, -0.25),
          largeFaceAt(0.5, 1.25), smallFaceAt(std::nextafter(1.0, 2.0), 0.5),
          smallFaceAt(0.5, std::nextafter(1.0, 2.0))}) {
        EXPECT_EQ(scoreOf({face}), 0.42) << face.x << ", " << face.y;
    }
}

TEST_F(FaceScore, OfExactlyOneHundredthIsLarge) {
    ASSERT_EQ(0.01 * 1.0, 0.01);
    EXPECT_EQ(scoreOf({{0.5, 0.0, 0.01, 1.0}}), faceScoreIn(middle, true));
    EXPECT_EQ(scoreOf({{0.25, 0.5, 1.0, 0.01}}), faceScoreIn(middle, true));
}

TEST_F(FaceScore, JustBelowOneHundredthIsSmall) {
    const double justBelow = std::nextafter(0.01, 0.0);
    EXPECT_EQ(scoreOf({{0.5, 0.0, justBelow, 1.0}}), faceScoreIn(middle, false));
    EXPECT_EQ(scoreOf({{0.25, 0.5, 1.0, justBelow}}), faceScoreIn(middle, false));
}

TEST_F(FaceScore, TakesTheLargestFaceWhereverItStands) {
    const KOR::KorRect small = smallFaceAt(0.5, 0.5);
    const KOR::KorRect large = largeFaceAt(0.15, 0.5);
    EXPECT_EQ(scoreOf({small, large}), faceScoreIn(inner, true));
    EXPECT_EQ(scoreOf({large, small}), faceScoreIn(inner, true));
    EXPECT_EQ(scoreOf({small, large, small}), faceScoreIn(inner, true));
}

TEST_F(FaceScore, TakesTheLargestByAreaNotBySide) {
    const KOR::KorRect wide = faceAt(0.5, 0.5, 0.5, 0.015625);
    const KOR::KorRect high = faceAt(0.5, 0.25, 0.015625, 0.5);
    EXPECT_EQ(scoreOf({wide, high, largeFaceAt(0.15, 0.5)}), faceScoreIn(inner, true));
}

TEST_F(FaceScore, TakesTheFirstOfEquallyLargeFaces) {
    const KOR::KorRect left = largeFaceAt(0.15, 0.5);
    const KOR::KorRect centred = largeFaceAt(0.5, 0.5);
    EXPECT_EQ(scoreOf({left, centred}), faceScoreIn(inner, true));
    EXPECT_EQ(scoreOf({centred, left}), faceScoreIn(middle, true));
}

TEST_F(FaceScore, LeavesFacesBehindTheCountAlone) {
    const std::vector<KOR::KorRect> faces{smallFaceAt(0.15, 0.5), largeFaceAt(0.5, 0.5)};
    EXPECT_EQ(KOR::faceScoreOfFrame(frameCounting(1, faces)), faceScoreIn(inner, false));
}

TEST_F(FaceScore, NeverTakesAFaceWithoutArea) {
    const KOR::KorRect flat{0.5, 0.5, 0.5, 0.0};
    EXPECT_EQ(scoreOf({flat, smallFaceAt(0.15, 0.5), flat}), faceScoreIn(inner, false));
}

TEST_F(FaceScore, OfNoAreaAtAllIsThatOfTheUpperLeftCorner) {
    EXPECT_EQ(scoreOf({{0.5, 0.5, 0.5, 0.0}}), faceScoreIn(outer, false));
    EXPECT_EQ(scoreOf({{0.5, 0.5, 0.0, 0.5}, {0.5, 0.5, 0.0, 0.0}}), faceScoreIn(outer, false));
}

TEST_F(FaceScore, NeverTakesAFaceOfOneNegativeSide) {
    EXPECT_EQ(scoreOf({{0.5, 0.5, -0.5, 0.5}, {0.5, 0.5, 0.5, -0.5}}), faceScoreIn(outer, false));
}

TEST_F(FaceScore, OfTwoNegativeSidesHasAPositiveArea) {
    // Its centre lies left of and above its corner.
    EXPECT_EQ(scoreOf({{0.25, 0.5, -0.25, -0.25}}), faceScoreIn(inner, true));
}

TEST_F(FaceScore, NeverTakesAFaceWhoseAreaIsNoNumber) {
    for (const KOR::KorRect& odd :
         {KOR::KorRect{0.5, 0.5, notANumber, 0.5}, KOR::KorRect{0.5, 0.5, 0.5, notANumber},
          KOR::KorRect{0.5, 0.5, infinity, 0.0}, KOR::KorRect{0.5, 0.5, 0.0, -infinity}}) {
        EXPECT_EQ(scoreOf({odd}), faceScoreIn(outer, false));
        EXPECT_EQ(scoreOf({odd, smallFaceAt(0.15, 0.5)}), faceScoreIn(inner, false));
        EXPECT_EQ(scoreOf({smallFaceAt(0.15, 0.5), odd}), faceScoreIn(inner, false));
    }
}

TEST_F(FaceScore, OfACentreThatIsNowhereIsThatWithoutFaces) {
    for (const KOR::KorRect& odd :
         {KOR::KorRect{notANumber, 0.5, 0.5, 0.5}, KOR::KorRect{0.5, notANumber, 0.5, 0.5},
          KOR::KorRect{infinity, 0.5, 0.5, 0.5}, KOR::KorRect{0.5, -infinity, 0.5, 0.5},
          KOR::KorRect{0.5, 0.5, infinity, 0.5}, KOR::KorRect{0.0, 0.5, -infinity, -0.5},
          KOR::KorRect{-infinity, 0.5, infinity, 0.5}}) {
        EXPECT_EQ(scoreOf({odd, smallFaceAt(0.15, 0.5)}), 0.42);
    }
}

/// Faces in the middle that grow from one to the next, with the last one in the left instead.
std::vector<KOR::KorRect> growingFaces(int count) {
    std::vector<KOR::KorRect> faces;
    for (int i = 1; i < count; ++i)
        faces.push_back(faceAt(0.5, 0.5, 0.125, 0.125 + i * 0.015625));
    faces.push_back(faceAt(0.15, 0.5, 0.125, 0.125 + count * 0.015625));
    return faces;
}

TEST_F(FaceScore, LooksAtEveryOneOfTwentyFaces) {
    EXPECT_EQ(scoreOf(growingFaces(20)), faceScoreIn(inner, true));
}

TEST_F(FaceScore, LooksAtTwentyFacesWhereMoreAreCounted) {
    // Behind the frame lies what would outdo every face of it.
    struct {
        KOR::FaceDetectFrame frame;
        KOR::KorRect behind;
    } memory{{}, {0, 0, 1, 1}};
    for (const std::int32_t count : {21, 22, 1000, std::numeric_limits<std::int32_t>::max()}) {
        memory.frame = frameCounting(count, growingFaces(20));
        EXPECT_EQ(KOR::faceScoreOfFrame(memory.frame), faceScoreIn(inner, true));
    }
}

TEST_F(FaceScore, IgnoresThePositionAndTheReservedBytes) {
    KOR::FaceDetectFrame frame = frameWith({largeFaceAt(0.15, 0.5)});
    frame.pos = std::numeric_limits<std::int64_t>::min();
    frame.reserved = -1;
    EXPECT_EQ(KOR::faceScoreOfFrame(frame), faceScoreIn(inner, true));
}

using FaceScoreByTheHost = FaceScore;

TEST_F(FaceScoreByTheHost, AsksForSixRegionsInTheirOrder) {
    std::vector<std::vector<double>> asked;
    host().geometry.pointInRect = [&](const KOR::KorPoint& point, const KOR::KorRect& region) {
        EXPECT_EQ(point.x, 0.25);
        EXPECT_EQ(point.y, 0.5);
        asked.push_back({region.x, region.y, region.width, region.height});
        return 0;
    };
    EXPECT_EQ(scoreOf({largeFaceAt(0.25, 0.5)}), 0.42);
    EXPECT_EQ(asked, (std::vector<std::vector<double>>{{0.2, 0.0, 0.8, 0.9},
                                                       {0.1, 0.0, 0.1, 0.9},
                                                       {0.0, 0.0, 0.1, 0.9},
                                                       {0.8, 0.0, 0.1, 0.9},
                                                       {0.9, 0.0, 0.1, 0.9},
                                                       {0.0, 0.9, 1.0, 0.1}}));
}

TEST_F(FaceScoreByTheHost, GivesEachRegionItsOwnScore) {
    const std::vector<double> regionScores{0.9, 0.3, 0.1, 0.3, 0.1, 0.1};
    for (std::size_t wanted = 0; wanted < regionScores.size(); ++wanted) {
        std::size_t asked = 0;
        host().geometry.pointInRect = [&](const KOR::KorPoint&, const KOR::KorRect&) {
            return asked++ == wanted ? 1 : 0;
        };
        EXPECT_EQ(scoreOf({largeFaceAt(0.5, 0.5)}), faceScoreIn(regionScores[wanted], true));
        EXPECT_EQ(asked, wanted + 1);
    }
}

TEST_F(FaceScoreByTheHost, TakesEveryNonZeroAnswerForInside) {
    for (const std::int32_t yes : {1, 2, -1, std::numeric_limits<std::int32_t>::min()}) {
        host().geometry.pointInRect = [&](const KOR::KorPoint&, const KOR::KorRect&) {
            return yes;
        };
        EXPECT_EQ(scoreOf({largeFaceAt(5.0, 5.0)}), faceScoreIn(middle, true)) << yes;
    }
}

TEST_F(FaceScoreByTheHost, TakesItsCentre) {
    host().geometry.centerPoint = [](const KOR::KorRect& face) {
        EXPECT_EQ(face.width, 0.125);
        return KOR::KorPoint{0.15, 0.5};
    };
    EXPECT_EQ(scoreOf({largeFaceAt(0.5, 0.5)}), faceScoreIn(inner, true));
}

TEST_F(FaceScoreByTheHost, TakesItsSidesForTheArea) {
    host().geometry.width = [](const KOR::KorRect& face) { return face.width * 4; };
    EXPECT_EQ(scoreOf({smallFaceAt(0.5, 0.5)}), faceScoreIn(middle, true));
    host().geometry.width = nullptr;
    host().geometry.height = [](const KOR::KorRect& face) { return face.height / 4; };
    EXPECT_EQ(scoreOf({largeFaceAt(0.5, 0.5)}), faceScoreIn(middle, false));
}

}  // namespace
}  // namespace fake_host
