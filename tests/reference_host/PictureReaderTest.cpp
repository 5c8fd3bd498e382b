#include <algorithm>

#include <gtest/gtest.h>

#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/PictureReaders.h"

namespace reference_host_tests {
namespace {

using reference_host::scenes::PictureFeatures;
using reference_host::scenes::Thumbnail;

/// Reads the first picture of a file of one colour, stored as `arguments` say.
Thumbnail pictureOf(const std::string& colour, const std::string& arguments,
                    const std::string& name = "a.mkv") {
    const FootageFiles files;
    const auto file = files.make(
        name, "-f lavfi -i color=" + colour + ":size=320x180:rate=25 -frames:v 2 " + arguments);
    PictureFeatures picture;
    EXPECT_TRUE(readerOfAll(file)->next(picture));
    return picture.thumbnail;
}

template <typename Plane>
void expectAll(const Plane& plane, int value) {
    EXPECT_NEAR(*std::min_element(plane.begin(), plane.end()), value, 2);
    EXPECT_NEAR(*std::max_element(plane.begin(), plane.end()), value, 2);
}

TEST(PictureReader, GivesFullRangeForEveryFormat) {
    const std::string lossless = "-c:v ffv1 -strict experimental -pix_fmt ";
    for (const char* format : {"yuv420p", "yuv422p10le", "yuv444p", "gray", "gray16le", "rgb24",
                               "bgra", "gbrp", "yuvj420p"}) {
        SCOPED_TRACE(format);
        const std::string codec =
            std::string(format) == "yuvj420p" ? "-c:v mjpeg -q:v 1 -pix_fmt " : lossless;
        const std::string stored =
            (std::string(format) == "rgb24" ? "-c:v png -pix_fmt " : codec) + format;
        const Thumbnail white = pictureOf("white", stored);
        expectAll(white.luma, 255);
        expectAll(white.u, 128);
        expectAll(white.v, 128);
        expectAll(pictureOf("black", stored).luma, 0);
        // Clipping would hide a wrong range at the ends of it.
        expectAll(pictureOf("0x404040", stored).luma, 64);
    }
}

TEST(PictureReader, GivesColourDifferences) {
    const Thumbnail blue = pictureOf("blue", "-c:v ffv1 -pix_fmt yuv420p");
    EXPECT_GT(blue.u[0], 230);
    const Thumbnail red = pictureOf("red", "-c:v ffv1 -pix_fmt bgra");
    EXPECT_GT(red.v[0], 230);
    const Thumbnail palette = pictureOf("red", "", "a.gif");
    EXPECT_GT(palette.v[0], 230);
}

TEST(PictureReader, KeepsTheWholePictureInPlace) {
    // White in the right half only.
    const Thumbnail picture = pictureOf(
        "black", "-vf drawbox=x=160:y=0:w=160:h=180:color=white:t=fill -c:v ffv1 -pix_fmt yuv420p");
    for (const std::size_t row : {0U, 13U, 26U}) {
        EXPECT_NEAR(picture.luma[row * 48], 0, 2);
        EXPECT_NEAR(picture.luma[row * 48 + 23], 0, 2);
        EXPECT_NEAR(picture.luma[row * 48 + 24], 255, 2);
        EXPECT_NEAR(picture.luma[row * 48 + 47], 255, 2);
    }
}

TEST(PictureReader, ReadsThePictureOfAPhoto) {
    const FootageFiles files;
    EXPECT_EQ(positionsOf(files.makeVideo("a.png", 1, "")), std::vector<std::int64_t>{0});
    EXPECT_EQ(positionsOf(files.makeVideo("a.mp4", 1)), std::vector<std::int64_t>{0});
}

TEST(PictureReader, EndsWhenItIsStopped) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 50);
    std::stop_source stop;
    const auto reader = readerOfAll(file, stop.get_token());
    PictureFeatures picture;
    EXPECT_TRUE(reader->next(picture));
    stop.request_stop();
    EXPECT_FALSE(reader->next(picture));
}

}  // namespace
}  // namespace reference_host_tests
