#include <algorithm>
#include <fstream>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "reference_host/vision/FaceDetector.h"
#include "tests/reference_host/TemporaryDirectory.h"
#include "tests/vision/Drawing.h"
#include "tests/vision/OnnxModel.h"

namespace reference_host::vision {
namespace {

/// Where OpenCV looks for faces in a square of 640 pixels: 80 x 80 cells with three sizes of faces,
/// 40 x 40 and 20 x 20 with two, 10 x 10 with three.
constexpr std::size_t places = 19200 + 3200 + 800 + 300;

/// In row 4 and column 4 of the coarsest cells, of 64 pixels, the largest of the faces, 256 pixels:
/// its centre lies at 288, 288.
constexpr std::size_t middlePlace = 19200 + 3200 + 800 + (4 * 10 + 4) * 3 + 2;

/// A model that is sure of a face at each place of `seen`, each of whose values is `offset`: with 0
/// the face is exactly where OpenCV looks.
OnnxModel modelThatSeesFacesAt(const std::vector<std::size_t>& seen, float offset = 0) {
    std::vector<float> confidence(places * 2);
    std::vector<float> overlaps(places);
    for (const std::size_t place : seen) {
        confidence[place * 2 + 1] = 1;
        overlaps[place] = 1;
    }
    return OnnxModel()
        .output("loc", std::vector<float>(places * 14, offset))
        .output("conf", confidence)
        .output("iou", overlaps);
}

class FaceModel : public testing::Test {
protected:
    std::filesystem::path write(const std::string& bytes) {
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

    /// What the refusal of `model` says, behind the file's name.
    std::string refusalOf(const std::filesystem::path& model) {
        try {
            makeFaceDetector(model);
        } catch (const std::runtime_error& error) {
            const std::string text = error.what();
            const std::string begin = "the face model " + model.string() + " ";
            EXPECT_EQ(text.substr(0, begin.size()), begin);
            return text.substr(std::min(begin.size(), text.size()));
        }
        return "none";
    }

    reference_host_tests::TemporaryDirectory directory;
    std::filesystem::path file = directory / "faces.onnx";
    const std::string noModel = "is no ONNX model for OpenCV's FaceDetectorYN";
};

TEST_F(FaceModel, FaceIsMappedToFractions) {
    const auto detector = makeFaceDetector(write(modelThatSeesFacesAt({middlePlace}).bytes()));
    const auto faces = detector->detect(Drawing(640, 480, 128).picture());
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_NEAR(faces[0].x, 160.0 / 640, 1e-6);
    EXPECT_NEAR(faces[0].y, 160.0 / 480, 1e-6);
    EXPECT_NEAR(faces[0].width, 256.0 / 640, 1e-6);
    EXPECT_NEAR(faces[0].height, 256.0 / 480, 1e-6);
}

TEST_F(FaceModel, FaceIsClippedToASmallerPicture) {
    const auto detector = makeFaceDetector(write(modelThatSeesFacesAt({middlePlace}).bytes()));
    const auto faces = detector->detect(Drawing(320, 200, 128).picture());
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_NEAR(faces[0].x, 0.5, 1e-6);
    EXPECT_NEAR(faces[0].y, 0.8, 1e-6);
    EXPECT_NEAR(faces[0].width, 0.5, 1e-6);
    EXPECT_NEAR(faces[0].height, 0.2, 1e-6);
}

TEST_F(FaceModel, FaceBesideThePictureIsLeftOut) {
    const auto detector = makeFaceDetector(write(modelThatSeesFacesAt({middlePlace}).bytes()));
    EXPECT_TRUE(detector->detect(Drawing(640, 100, 128).picture()).empty());
}

TEST_F(FaceModel, OneDetectorTakesPicturesOfAllSizes) {
    const auto detector = makeFaceDetector(write(modelThatSeesFacesAt({middlePlace}).bytes()));
    EXPECT_EQ(detector->detect(Drawing(640, 640, 128).picture()).size(), 1U);
    EXPECT_TRUE(detector->detect(Drawing(1, 1, 128).picture()).empty());
    EXPECT_EQ(detector->detect(Drawing(400, 640, 128).picture()).size(), 1U);
}

TEST_F(FaceModel, ModelThatSeesNothingFindsNothing) {
    const auto detector = makeFaceDetector(write(modelThatSeesFacesAt({}).bytes()));
    EXPECT_TRUE(detector->detect(Drawing(640, 360, 128).face(300, 180, 120).picture()).empty());
}

TEST_F(FaceModel, FaceThatIsNoNumberIsLeftOut) {
    const float noNumber = std::numeric_limits<float>::quiet_NaN();
    const auto detector =
        makeFaceDetector(write(modelThatSeesFacesAt({middlePlace}, noNumber).bytes()));
    EXPECT_TRUE(detector->detect(Drawing(640, 640, 128).picture()).empty());
}

TEST_F(FaceModel, MissingFileIsRefused) {
    EXPECT_EQ(refusalOf(file), "does not exist");
}

TEST_F(FaceModel, DirectoryIsRefused) {
    EXPECT_EQ(refusalOf(directory.path()), "is no regular file");
}

TEST_F(FaceModel, PipeIsRefusedUnopened) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(refusalOf(file), "is no regular file");
}

TEST_F(FaceModel, EmptyFileIsRefused) {
    EXPECT_EQ(refusalOf(write("")), "is empty");
}

TEST_F(FaceModel, RandomBytesAreRefused) {
    std::mt19937 random(3);
    std::string bytes(5000, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    EXPECT_EQ(refusalOf(write(bytes)), noModel);
}

TEST_F(FaceModel, TruncatedModelIsRefused) {
    const std::string bytes = modelThatSeesFacesAt({middlePlace}).bytes();
    EXPECT_EQ(refusalOf(write(bytes.substr(0, bytes.size() / 2))), noModel);
}

TEST_F(FaceModel, ModelWithOtherOutputsIsRefused) {
    EXPECT_EQ(refusalOf(write(OnnxModel().output("kind", {1, 2, 3}).bytes())), noModel);
}

TEST_F(FaceModel, ModelWithTooFewValuesIsRefused) {
    const OnnxModel few =
        OnnxModel().output("loc", std::vector<float>(14)).output("conf", {0, 1}).output("iou", {1});
    EXPECT_EQ(refusalOf(write(few.bytes())), noModel);
}

TEST_F(FaceModel, RefusalWritesNothingElse) {
    std::string unknownOperator = modelThatSeesFacesAt({}).bytes();
    unknownOperator.replace(unknownOperator.find("Gemm"), 4, "Gimm");
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(refusalOf(write(unknownOperator)), noModel);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(FaceModel, RefusalsAtOnceWriteNothingElse) {
    write(OnnxModel().output("kind", {1, 2, 3}).bytes());
    testing::internal::CaptureStderr();
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([this] {
                for (int time = 0; time < 50; ++time)
                    EXPECT_EQ(refusalOf(file), noModel);
            });
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace reference_host::vision
