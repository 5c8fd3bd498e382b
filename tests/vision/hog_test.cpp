#include <utility>
#include <vector>

#include <dlib/image_processing/frontal_face_detector.h>
#include <dlib/opencv.h>
#include <gtest/gtest.h>

#include "reference_host/vision/HogFaces.h"
#include "reference_host/vision/matrices.h"
#include "tests/vision/Drawing.h"

namespace reference_host::vision {
namespace {

TEST(HogFaces, FindsWhatTheModelAsDlibHasItFinds) {
    Drawing drawing(240, 200, 128);
    const cv::Mat picture = brightnessMatrix(drawing.face(120, 100, 110).picture());
    constexpr double lowestScore = -1;

    std::vector<std::pair<double, dlib::rectangle>> expected;
    auto detector = dlib::get_frontal_face_detector();
    detector(dlib::cv_image<unsigned char>(picture), expected, lowestScore);
    const std::vector<Find> finds = HogFaces().find(picture, lowestScore);

    ASSERT_FALSE(expected.empty());
    ASSERT_EQ(finds.size(), expected.size());
    for (std::size_t i = 0; i < finds.size(); ++i) {
        EXPECT_EQ(finds[i].score, expected[i].first);
        EXPECT_EQ(finds[i].box.x, static_cast<double>(expected[i].second.left()));
        EXPECT_EQ(finds[i].box.y, static_cast<double>(expected[i].second.top()));
        EXPECT_EQ(finds[i].box.width, static_cast<double>(expected[i].second.width()));
        EXPECT_EQ(finds[i].box.height, static_cast<double>(expected[i].second.height()));
    }
}

}  // namespace
}  // namespace reference_host::vision
