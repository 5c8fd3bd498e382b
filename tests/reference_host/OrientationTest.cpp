#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/Orientation.h"
#include "reference_host/media/exifOrientation.h"
#include "tests/reference_host/photos.h"

namespace reference_host_tests {
namespace {

using reference_host::media::Orientation;

/// What a stored picture of two rows, "abc" above "def", looks like when it is upright.
std::vector<std::string> shown(Orientation orientation) {
    const std::vector<std::string> stored{"abc", "def"};
    const int width = orientation.swapsSides() ? 2 : 3;
    const int height = orientation.swapsSides() ? 3 : 2;
    std::vector<std::string> upright;
    for (int y = 0; y < height; ++y) {
        upright.emplace_back();
        for (int x = 0; x < width; ++x) {
            const auto place = storedPlace({x, y}, orientation, 3, 2);
            upright.back() +=
                stored.at(static_cast<std::size_t>(place.y)).at(static_cast<std::size_t>(place.x));
        }
    }
    return upright;
}

using Rows = std::vector<std::string>;

TEST(Orientation, OfExifPutsTheFirstRowAndColumnInPlace) {
    // The standard tells where the stored first row and first column belong.
    EXPECT_EQ(shown(Orientation::ofExif(1)), (Rows{"abc", "def"})) << "top, left";
    EXPECT_EQ(shown(Orientation::ofExif(2)), (Rows{"cba", "fed"})) << "top, right";
    EXPECT_EQ(shown(Orientation::ofExif(3)), (Rows{"fed", "cba"})) << "bottom, right";
    EXPECT_EQ(shown(Orientation::ofExif(4)), (Rows{"def", "abc"})) << "bottom, left";
    EXPECT_EQ(shown(Orientation::ofExif(5)), (Rows{"ad", "be", "cf"})) << "left, top";
    EXPECT_EQ(shown(Orientation::ofExif(6)), (Rows{"da", "eb", "fc"})) << "right, top";
    EXPECT_EQ(shown(Orientation::ofExif(7)), (Rows{"fc", "eb", "da"})) << "right, bottom";
    EXPECT_EQ(shown(Orientation::ofExif(8)), (Rows{"cf", "be", "ad"})) << "left, bottom";
}

TEST(Orientation, OfUnknownExifValuesIsUpright) {
    for (const int value : {-1, 0, 9, 65535})
        EXPECT_EQ(Orientation::ofExif(value), Orientation{}) << value;
}

/// The matrix that leads a stored step to the right to (a, b), and a step down to (c, d).
Orientation ofMatrix(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
    return Orientation::ofDisplayMatrix({a, b, 0, c, d, 0, 0, 0, 1 << 30});
}

TEST(Orientation, OfDisplayMatrixFollowsItsSteps) {
    constexpr std::int32_t one = 1 << 16;
    EXPECT_EQ(ofMatrix(one, 0, 0, one), Orientation::ofExif(1));
    EXPECT_EQ(ofMatrix(-one, 0, 0, one), Orientation::ofExif(2));
    EXPECT_EQ(ofMatrix(-one, 0, 0, -one), Orientation::ofExif(3));
    EXPECT_EQ(ofMatrix(one, 0, 0, -one), Orientation::ofExif(4));
    EXPECT_EQ(ofMatrix(0, one, one, 0), Orientation::ofExif(5));
    EXPECT_EQ(ofMatrix(0, one, -one, 0), Orientation::ofExif(6));
    EXPECT_EQ(ofMatrix(0, -one, -one, 0), Orientation::ofExif(7));
    EXPECT_EQ(ofMatrix(0, -one, one, 0), Orientation::ofExif(8));
}

TEST(Orientation, OfDisplayMatrixIsTheNearestOne) {
    // Turned by 80 degrees, and made larger; nothing; the largest numbers that there are.
    EXPECT_EQ(ofMatrix(22760, 129080, -129080, 22760), Orientation::ofExif(6));
    EXPECT_EQ(ofMatrix(0, 0, 0, 0), Orientation{});
    EXPECT_EQ(ofMatrix(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MIN), Orientation::ofExif(3));
}

// The tag in a file's bytes.

Orientation inBytes(const std::string& bytes) {
    const std::vector<std::uint8_t> file(bytes.begin(), bytes.end());
    return reference_host::media::exifOrientation(file);
}

TEST(ExifOrientation, IsReadInBothByteOrders) {
    for (int value = 1; value <= 8; ++value) {
        EXPECT_EQ(inBytes(exifBlock(value)), Orientation::ofExif(value));
        EXPECT_EQ(inBytes(exifBlock(value, ByteOrder::big)), Orientation::ofExif(value));
    }
}

TEST(ExifOrientation, IsFoundInTheChunksOfPngAndWebp) {
    EXPECT_EQ(inBytes(withExif(smallPng(), Photo::png, 6)), Orientation::ofExif(6));
    EXPECT_EQ(inBytes(smallPng()), Orientation{});
    const std::string head{"RIFF\x40\0\0\0WEBP", 12};
    const std::string oddChunk{"VP8L\x05\0\0\0abcde\0", 14};
    EXPECT_EQ(inBytes(head + oddChunk + exifChunk(exifBlock(8))), Orientation::ofExif(8));
    EXPECT_EQ(inBytes(head + oddChunk + exifChunk(std::string("Exif\0\0", 6) + exifBlock(7))),
              Orientation::ofExif(7));
    EXPECT_EQ(inBytes(head + oddChunk), Orientation{});
}

TEST(ExifOrientation, OfWhatIsCutOffAnywhereIsUpright) {
    for (const std::string& file : {exifBlock(6), withExif(smallPng(), Photo::png, 6)}) {
        const std::size_t end = file.find(std::string("\x12\x01\x03\0", 4)) + 10;
        for (std::size_t size = 0; size < end; ++size)
            EXPECT_EQ(inBytes(file.substr(0, size)), Orientation{}) << size;
    }
}

TEST(ExifOrientation, BelievesNoWrongTypeAndNoWrongPlace) {
    std::string wrongType = exifBlock(6);
    wrongType[12] = 4;
    EXPECT_EQ(inBytes(wrongType), Orientation{});
    std::string wrongPlace = exifBlock(6);
    wrongPlace.replace(4, 4, "\xff\xff\xff\xff");
    EXPECT_EQ(inBytes(wrongPlace), Orientation{});
    EXPECT_EQ(inBytes("JPEG"), Orientation{});
    EXPECT_EQ(inBytes(""), Orientation{});
}

}  // namespace
}  // namespace reference_host_tests
