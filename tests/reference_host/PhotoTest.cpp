#include <cstdlib>
#include <stdexcept>

#include <gtest/gtest.h>

#include "reference_host/ReferenceHost.h"
#include "reference_host/cache/factsFile.h"
#include "reference_host/media/PositionReader.h"
#include "reference_host/media/inspect.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/PictureReaders.h"
#include "tests/reference_host/photos.h"

namespace reference_host_tests {
namespace {

using reference_host::vision::Picture;

Picture pictureOf(const std::filesystem::path& file, std::int64_t positionTicks = 0) {
    reference_host::media::PositionReader reader(file, reference_host::media::inspect(file), {});
    Picture picture;
    if (!reader.read(positionTicks, picture)) throw std::runtime_error("no picture");
    return picture;
}

/// ffmpeg's input of a picture whose four quarters are, from the top left on, red, green, blue and
/// white.
std::string quarters(const std::string& size = "64x48") {
    return "-f lavfi -i color=white:" + size +
           ",format=rgb24,drawbox=w=iw/2:h=ih/2:c=red:t=fill,"
           "drawbox=x=iw/2:w=iw/2:h=ih/2:c=0x00FF00:t=fill,"
           "drawbox=y=ih/2:w=iw/2:h=ih/2:c=blue:t=fill -frames:v 1 ";
}

/// Names the colours in the middles of the quarters, row by row.
std::string coloursIn(const Picture& picture) {
    std::string colours;
    for (const int y : {1, 3}) {
        for (const int x : {1, 3}) {
            const int place =
                (y * picture.heightPx / 4) * picture.widthPx + x * picture.widthPx / 4;
            const std::uint8_t* pixel = &picture.bgr.at(static_cast<std::size_t>(place) * 3);
            const int bits = (pixel[0] >> 7) | (pixel[1] >> 7) << 1 | (pixel[2] >> 7) << 2;
            colours += "kbg?r??w"[bits];
        }
    }
    return colours;
}

/// The quarters as they are seen after each EXIF orientation.
struct Turned {
    int orientation;
    const char* colours;
    bool isUpended;
};
constexpr Turned allTurned[]{{1, "rgbw", false}, {2, "grwb", false}, {3, "wbgr", false},
                             {4, "bwrg", false}, {5, "rbgw", true},  {6, "brwg", true},
                             {7, "wgbr", true},  {8, "gwrb", true}};

void expectTurned(const Picture& picture, const Turned& turned) {
    EXPECT_EQ(coloursIn(picture), turned.colours) << turned.orientation;
    EXPECT_EQ(picture.widthPx, turned.isUpended ? 48 : 64) << turned.orientation;
    EXPECT_EQ(picture.heightPx, turned.isUpended ? 64 : 48) << turned.orientation;
}

TEST(Photo, StandsUprightByItsExifOrientation) {
    const FootageFiles files;
    const struct {
        const char* name;
        Photo format;
    } photos[]{{"a.jpg", Photo::jpeg},
               {"a.png", Photo::png},
               {"a.webp", Photo::webp},
               {"a.tiff", Photo::tiff}};
    for (const auto& [name, format] : photos) {
        SCOPED_TRACE(name);
        const std::string plain = contentOf(files.make(name, quarters()));
        expectTurned(pictureOf(files.path(name)), allTurned[0]);
        for (const Turned& turned : allTurned) {
            files.write(name, withExif(plain, format, turned.orientation));
            expectTurned(pictureOf(files.path(name)), turned);
        }
    }
}

TEST(Photo, OfAVideoIsTurnedByItsMetadata) {
    const FootageFiles files;
    for (const char* name : {"a.mp4", "a.mov"}) {
        const auto plain = files.make("plain.mp4", quarters() + "-c:v libx264 -pix_fmt yuv420p");
        // The program counts anticlockwise.
        const struct {
            const char* rotate;
            Turned turned;
        } videos[]{{"90", allTurned[7]}, {"180", allTurned[2]}, {"270", allTurned[5]}};
        for (const auto& [rotate, turned] : videos) {
            expectTurned(
                pictureOf(files.make(
                    name, "-i '" + plain.string() + "' -c copy -metadata:s:v rotate=" + rotate)),
                turned);
        }
    }
}

TEST(Photo, OfAVideoIsTurnedByTheStreamItself) {
    const FootageFiles files;
    const auto plain = files.make("plain.mp4", quarters() + "-c:v libx264 -pix_fmt yuv420p");
    expectTurned(pictureOf(files.make("a.mkv", "-i '" + plain.string() +
                                                   "' -c copy -bsf:v "
                                                   "h264_metadata=display_orientation=insert:"
                                                   "rotate=90")),
                 allTurned[7]);
}

TEST(Photo, IsTheSameAtEveryPosition) {
    const FootageFiles files;
    const auto file = files.make("a.png", quarters());
    for (const std::int64_t position : {INT64_MIN, std::int64_t{-1}, std::int64_t{5}, INT64_MAX})
        EXPECT_EQ(coloursIn(pictureOf(file, position)), "rgbw");
}

TEST(Photo, IsOneInEveryFormat) {
    const FootageFiles files;
    for (const char* name :
         {"a.jpg", "a.png", "a.webp", "a.bmp", "a.gif", "a.tiff", "a.ppm", "a.jp2"}) {
        SCOPED_TRACE(name);
        const auto file = files.make(name, quarters());
        EXPECT_EQ(coloursIn(pictureOf(file)), "rgbw");
        const auto material = import(file);
        EXPECT_EQ(mediaOf(material).getMediaType(), KOR::mediaTypePhoto);
        EXPECT_EQ(mediaOf(material).getDuration(), 1);
        KOR::KorValue length{};
        length.asInt64 = 5;
        sourceOf(material).getMediaInfo(KOR::mediaInfoKey::media_length, &length);
        EXPECT_EQ(length.asInt64, 0);
    }
}

/// Photos that libheif reads, made by its encoder.
class HeifPhoto : public testing::Test {
protected:
    void SetUp() override {
#ifndef REFERENCE_HOST_HAS_LIBHEIF
        GTEST_SKIP() << "built without libheif";
#endif
        if (std::system("command -v heif-enc >/dev/null") != 0) {
            GTEST_SKIP() << "heif-enc is not installed";
        }
    }

    /// The four quarters; `options` are the encoder's.
    std::filesystem::path heif(const std::string& name, const std::string& options = "",
                               const std::string& size = "64x48") const {
        const auto png = files.make("a.png", quarters(size));
        const std::string command = "heif-enc -q 90 " + options + " -o '" +
                                    files.path(name).string() + "' '" + png.string() +
                                    "' >/dev/null 2>&1";
        if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
        return files.path(name);
    }

    FootageFiles files;
};

TEST_F(HeifPhoto, IsReadFromHeifAndAvif) {
    for (const auto& [name, options] : {std::pair{"a.heic", ""}, {"a.avif", "-A"}}) {
        SCOPED_TRACE(name);
        const auto file = heif(name, options, "66x50");
        EXPECT_EQ(coloursIn(pictureOf(file)), "rgbw");
        EXPECT_EQ(mediaOf(import(file)).getMediaType(), KOR::mediaTypePhoto);
        EXPECT_EQ(mediaOf(import(file)).getDuration(), 1);
        EXPECT_EQ(positionsOf(file), std::vector<std::int64_t>{0});
    }
}

TEST_F(HeifPhoto, MayHaveTheBrandOfAllPhotos) {
    const auto file = heif("a.heic");
    FootageFiles::patch(file, 8, "mif1");
    EXPECT_EQ(coloursIn(pictureOf(file)), "rgbw");
}

TEST_F(HeifPhoto, IsTurnedOnce) {
    const auto file = heif("a.heic");
    // Makes a property that tells the depth one that turns by three quarters, which are
    // counted anticlockwise.
    const std::size_t property = contentOf(file).find("pixi");
    ASSERT_NE(property, std::string::npos);
    FootageFiles::patch(file, static_cast<std::int64_t>(property), "irot\x03");
    expectTurned(pictureOf(file), allTurned[5]);
}

TEST_F(HeifPhoto, HasItsFactsKept) {
    const auto file = heif("a.heic");
    const auto root = files.path("cache");
    const auto imported = reference_host::importMaterial(file, root);
    hold(imported.object);
    const auto kept = reference_host::cache::keptFacts(root / imported.contentKey);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->footage, reference_host::media::inspect(file));
    EXPECT_NE(kept->madeBy.find("libheif"), std::string::npos) << kept->madeBy;
}

TEST_F(HeifPhoto, ThatIsDamagedIsRefused) {
    const auto file = heif("a.heic");
    FootageFiles::truncate(file, 0.8);
    EXPECT_NE(refusalOf(file), "");
    EXPECT_EQ(refusalOf(file).find('\n'), std::string::npos);
}

TEST_F(HeifPhoto, IsReadWhateverItsSize) {
    // More than what FFmpeg decodes by itself to find out about a stream.
    const auto file = heif("a.avif", "-A", "6000x6000");
    EXPECT_EQ(coloursIn(pictureOf(file)), "rgbw");
}

TEST_F(HeifPhoto, IsNoLargerThanItDeclares) {
    const auto part = heif("a.avif", "-A", "128x128");
    const std::string avif = contentOf(part);
    EXPECT_EQ(coloursIn(pictureOf(files.write("one.avif", gridOf(avif, 128, 1)))), "rgbw");
    EXPECT_NE(refusalOf(files.write("many.avif", gridOf(avif, 128, 64))).find("limit"),
              std::string::npos);
}

TEST(Photo, OfManyPixelsIsReadUncompressed) {
    const FootageFiles files;
    EXPECT_EQ(coloursIn(pictureOf(files.make("a.ppm", quarters("6000x6000")))), "rgbw");
    EXPECT_NE(refusalOf(files.write("b.ppm", "P6\n20000 20000\n255\n")).find("the limit is"),
              std::string::npos);
}

TEST(Photo, OfManyPixelsKeepsTheSideThatIsLookedAt) {
    const FootageFiles files;
    for (const char* size : {"5000x3751", "641x1283", "1280x720", "1279x9"}) {
        SCOPED_TRACE(size);
        const Picture picture = pictureOf(files.make("a.jpg", quarters(size)));
        EXPECT_EQ(std::max(picture.widthPx, picture.heightPx), 640);
        EXPECT_EQ(coloursIn(picture), "rgbw");
    }
}

TEST(Photo, IsHalvedWhileItIsDecodedWhereThatCanBe) {
    const FootageFiles files;
    const auto pixels = [](const Picture& picture) {
        std::int64_t all = 0;
        for (const std::int64_t count : picture.luma)
            all += count;
        return all;
    };
    EXPECT_EQ(pixels(pictureOf(files.make("a.jpg", quarters("5120x2560")))), 640 * 320);
    EXPECT_EQ(pixels(pictureOf(files.make("b.jpg", quarters("1300x100")))), 650 * 50);
    EXPECT_EQ(pixels(pictureOf(files.make("c.jpg", quarters("1278x100")))), 1278 * 100);
    EXPECT_EQ(pixels(pictureOf(files.make("a.png", quarters("5120x2560")))), 5120 * 2560);
    // Too many for FFmpeg's first look to tell how many.
    EXPECT_EQ(pixels(pictureOf(files.make("d.jpg", quarters("8000x6000")))), 1000 * 750);
}

}  // namespace
}  // namespace reference_host_tests
