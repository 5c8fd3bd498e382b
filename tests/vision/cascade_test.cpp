#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <rapidcheck/gtest.h>

#include "reference_host/vision/LbpCascade.h"
#include "reference_host/vision/matrices.h"
#include "tests/reference_host/TemporaryDirectory.h"
#include "tests/vision/Drawing.h"

namespace reference_host::vision {
namespace {

using Windows = std::vector<cv::Rect>;

constexpr double sizeStep = 1.1;

const std::filesystem::path directory =
    std::filesystem::path(OPENCV_DATA_DIRECTORY) / "lbpcascades";

/// A cascade, and what OpenCV itself makes of the same file.
struct Both {
    explicit Both(const std::string& name)
        : own(directory / name), ofOpenCv((directory / name).string()) {}

    LbpCascade own;
    cv::CascadeClassifier ofOpenCv;
};

Both& windowsOf24() {
    static Both both("lbpcascade_frontalface.xml");
    return both;
}

Both& windowsOf45() {
    static Both both("lbpcascade_frontalface_improved.xml");
    return both;
}

/// In an order that does not depend on who has found them.
Windows sorted(Windows windows) {
    std::sort(windows.begin(), windows.end(), [](const cv::Rect& a, const cv::Rect& b) {
        return std::tie(a.width, a.height, a.y, a.x) < std::tie(b.width, b.height, b.y, b.x);
    });
    return windows;
}

Windows own(const Both& both, const cv::Mat& picture, int smallestPx) {
    Windows windows = both.own.windows(picture, sizeStep, smallestPx);
    for (cv::Rect& window : windows)
        window &= cv::Rect(cv::Point(), picture.size());
    return sorted(windows);
}

Windows ofOpenCv(Both& both, const cv::Mat& picture, int smallestPx) {
    Windows windows;
    both.ofOpenCv.detectMultiScale(picture, windows, sizeStep, 0, 0, {smallestPx, smallestPx});
    return sorted(windows);
}

TEST(LbpCascade, FindsTheWindowsThatOpenCvFindsAroundFaces) {
    for (const double facePx : {30.0, 45.0, 60.0, 97.0, 200.0}) {
        SCOPED_TRACE(facePx);
        Drawing drawing(331, 247, 128);
        const cv::Mat picture = brightnessMatrix(drawing.face(160, 120, facePx).picture());
        const Windows expected = ofOpenCv(windowsOf24(), picture, 30);
        EXPECT_GT(expected.size(), 3U);
        EXPECT_EQ(own(windowsOf24(), picture, 30), expected);
        EXPECT_EQ(own(windowsOf45(), picture, 50), ofOpenCv(windowsOf45(), picture, 50));
    }
}

TEST(LbpCascade, FindsTheWindowsThatOpenCvFindsAtTheBorders) {
    for (const double centre : {30.0, 40.0, 50.0}) {
        SCOPED_TRACE(centre);
        Drawing drawing(96, 96, 128);
        const cv::Mat picture = brightnessMatrix(drawing.face(centre, 96 - centre, 70).picture());
        EXPECT_EQ(own(windowsOf24(), picture, 0), ofOpenCv(windowsOf24(), picture, 0));
    }
}

TEST(LbpCascade, FindsAWindowInTheLastRow) {
    Drawing drawing(64, 64, 128);
    const cv::Mat picture = brightnessMatrix(drawing.face(32, 32, 20).picture());
    const Windows around = own(windowsOf24(), picture, 0);
    ASSERT_FALSE(around.empty());
    const cv::Rect window = around.front();
    ASSERT_EQ(window.width, 24);
    ASSERT_GE(window.y, 8);
    const cv::Mat column = picture.colRange(window.x, window.br().x);
    EXPECT_EQ(own(windowsOf24(), column.rowRange(window.y, window.br().y), 0),
              Windows{cv::Rect(0, 0, 24, 24)});
    EXPECT_EQ(own(windowsOf24(), column.rowRange(window.y - 8, window.br().y), 0),
              Windows{cv::Rect(0, 8, 24, 24)});
}

TEST(LbpCascade, FindsNoneInPicturesSmallerThanItsWindow) {
    for (const cv::Size size : {cv::Size(1, 1), cv::Size(23, 100), cv::Size(100, 23)})
        EXPECT_TRUE(
            windowsOf24().own.windows(cv::Mat(size, CV_8U, cv::Scalar(9)), sizeStep, 0).empty());
}

/// Those that do not reach down to the picture's last rows. OpenCV examines every second row in
/// stripes of an even height, which leave out the last of an odd number of rows.
Windows aboveTheLastRows(Windows windows, const cv::Mat& picture) {
    const auto reachesDown = [&](const cv::Rect& window) {
        return window.br().y >= picture.rows - 2;
    };
    windows.erase(std::remove_if(windows.begin(), windows.end(), reachesDown), windows.end());
    return windows;
}

RC_GTEST_PROP(LbpCascade, FindsTheWindowsThatOpenCvFindsInAnything, ()) {
    const cv::Size size(*rc::gen::inRange(24, 200), *rc::gen::inRange(24, 200));
    cv::Mat picture(size, CV_8U);
    cv::RNG random(*rc::gen::arbitrary<std::uint64_t>());
    random.fill(picture, cv::RNG::UNIFORM, 0, 256);
    // Noise of all sizes: coarse enough to be taken for features now and then.
    cv::GaussianBlur(picture, picture, {}, *rc::gen::inRange(1, 80) / 10.0);
    cv::normalize(picture, picture, 0, 255, cv::NORM_MINMAX);
    RC_ASSERT(aboveTheLastRows(own(windowsOf24(), picture, 0), picture) ==
              aboveTheLastRows(ofOpenCv(windowsOf24(), picture, 0), picture));
}

class LbpCascadeFile : public testing::Test {
protected:
    /// `feature` is a box, `nodes` is how many numbers a tree has.
    bool isTaken(const std::string& type, const std::string& feature, int nodes) {
        std::string tree = "0 -1 0";
        for (int i = 3; i < nodes; ++i)
            tree += " 0";
        const auto file = directory_.path() / "cascade.xml";
        std::ofstream(file) << "<?xml version=\"1.0\"?><opencv_storage><cascade><featureType>"
                            << type
                            << "</featureType><height>24</height><width>24</width><stages><_>"
                               "<stageThreshold>0.</stageThreshold><weakClassifiers><_>"
                               "<internalNodes>"
                            << tree
                            << "</internalNodes><leafValues>-1. 1.</leafValues></_>"
                               "</weakClassifiers></_></stages><features><_><rect>"
                            << feature << "</rect></_></features></cascade></opencv_storage>";
        try {
            const LbpCascade cascade(file);
            return true;
        } catch (const std::runtime_error&) {
            return false;
        }
    }

private:
    reference_host_tests::TemporaryDirectory directory_;
};

TEST_F(LbpCascadeFile, IsTakenWhereAllFits) {
    EXPECT_TRUE(isTaken("LBP", "0 0 8 8", 11));
    EXPECT_TRUE(isTaken("LBP", "21 21 1 1", 11));
}

TEST_F(LbpCascadeFile, IsRefusedWhereSomethingDoesNotFit) {
    EXPECT_FALSE(isTaken("HAAR", "0 0 8 8", 11));
    EXPECT_FALSE(isTaken("LBP", "1 0 8 8", 11)) << "beyond the window";
    EXPECT_FALSE(isTaken("LBP", "-1 0 2 2", 11)) << "beyond the window";
    EXPECT_FALSE(isTaken("LBP", "0 0 0 1", 11)) << "empty";
    EXPECT_FALSE(isTaken("LBP", "0 0 2147483647 2", 11)) << "beyond all numbers";
    EXPECT_FALSE(isTaken("LBP", "2147483647 0 2 2", 11)) << "beyond all numbers";
    EXPECT_FALSE(isTaken("LBP", "0 0 8 8", 12)) << "no single node";
}

}  // namespace
}  // namespace reference_host::vision
