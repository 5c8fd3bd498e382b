#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include <gtest/gtest.h>

#include "reference_host/media/PositionReader.h"
#include "reference_host/media/inspect.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

using reference_host::vision::LumaHistogram;
using reference_host::vision::Picture;

Picture pictureOf(const std::filesystem::path& file) {
    reference_host::media::PositionReader reader(file, reference_host::media::inspect(file), {});
    Picture picture;
    if (!reader.read(0, picture)) throw std::runtime_error("no picture in " + file.string());
    return picture;
}

/// Shannon's entropy in bits.
double entropyOf(const LumaHistogram& luma) {
    double all = 0;
    for (const std::int64_t count : luma)
        all += static_cast<double>(count);
    double entropy = 0;
    for (const std::int64_t count : luma) {
        const double part = static_cast<double>(count) / all;
        if (count > 0) entropy -= part * std::log2(part);
    }
    return entropy;
}

std::int64_t pixelsIn(const LumaHistogram& luma) {
    std::int64_t all = 0;
    for (const std::int64_t count : luma)
        all += count;
    return all;
}

// How brightness is counted.

constexpr int widthPx = 256;
constexpr int heightPx = 16;

/// Gives the sample of a component, by its number in the order of the file and the column.
using Sample = std::function<int(int component, int column)>;

/// A picture without compression.
struct Raw {
    std::string format;
    /// Samples of a pixel that stand side by side.
    int perPixel = 1;
    /// Equal planes that follow each other.
    int planes = 1;
    int bytesPerSample = 1;
    /// How many samples for colour stand behind that, all of the middle value.
    std::size_t chromaSamples = 0;
    int middle = 128;
    std::string range = "unknown";
    /// NUT takes every format, but does not keep the range.
    std::string file = "a.nut";
};

std::string bytesOf(const Raw& raw, const Sample& sample) {
    std::string bytes;
    const auto add = [&](int value) {
        for (int i = 0; i < raw.bytesPerSample; ++i)
            bytes += static_cast<char>(value >> (8 * i) & 0xff);
    };
    for (int row = 0; row < raw.planes * heightPx; ++row) {
        for (int x = 0; x < widthPx; ++x) {
            for (int component = 0; component < raw.perPixel; ++component)
                add(sample(component, x));
        }
    }
    for (std::size_t i = 0; i < raw.chromaSamples; ++i)
        add(raw.middle);
    return bytes;
}

LumaHistogram lumaOf(const Raw& raw, const Sample& sample) {
    const FootageFiles files;
    const auto bytes = files.write("a.raw", bytesOf(raw, sample));
    const std::string size = std::to_string(widthPx) + "x" + std::to_string(heightPx);
    const LumaHistogram luma =
        pictureOf(files.make(raw.file, "-f rawvideo -s " + size + " -pix_fmt " + raw.format +
                                           " -i '" + bytes.string() + "' -color_range " +
                                           raw.range + " -strict experimental -c:v " +
                                           (raw.file == "a.nut" ? "rawvideo" : "ffv1")))
            .luma;
    EXPECT_EQ(pixelsIn(luma), widthPx * heightPx);
    return luma;
}

/// Expects as many pixels in each bin.
void expectEven(const LumaHistogram& luma) {
    EXPECT_TRUE(std::all_of(luma.begin(), luma.end(),
                            [&](std::int64_t count) { return count == luma[0]; }));
}

constexpr std::size_t allPixels = std::size_t{widthPx} * heightPx;

TEST(LumaHistogram, OfFullRangeIsExact) {
    const auto column = [](int, int x) { return x; };
    expectEven(lumaOf({.format = "gray"}, column));
    expectEven(lumaOf(
        {.format = "yuv420p", .chromaSamples = allPixels / 2, .range = "pc", .file = "a.mkv"},
        column));
    expectEven(lumaOf(
        {.format = "yuv422p", .chromaSamples = allPixels, .range = "pc", .file = "a.mkv"}, column));
}

TEST(LumaHistogram, OfEqualColoursIsTheirValue) {
    const auto column = [](int, int x) { return x; };
    expectEven(lumaOf({.format = "rgb24", .perPixel = 3}, column));
    expectEven(lumaOf({.format = "bgra", .perPixel = 4}, column));
    expectEven(lumaOf({.format = "gbrp", .planes = 3}, column));
    const auto deep = [](int, int x) { return x * 257; };
    expectEven(lumaOf({.format = "rgb48le", .perPixel = 3, .bytesPerSample = 2}, deep));
}

TEST(LumaHistogram, WeighsColours) {
    const auto only = [](int wanted) {
        return [wanted](int component, int) { return component == wanted ? 255 : 0; };
    };
    const Raw rgb{.format = "rgb24", .perPixel = 3};
    EXPECT_EQ(lumaOf(rgb, only(0))[76], widthPx * heightPx) << "red: .299";
    EXPECT_EQ(lumaOf(rgb, only(1))[150], widthPx * heightPx) << "green: .587";
    EXPECT_EQ(lumaOf(rgb, only(2))[29], widthPx * heightPx) << "blue: .114";
    EXPECT_EQ(lumaOf({.format = "bgr24", .perPixel = 3}, only(2))[76], widthPx * heightPx);
}

TEST(LumaHistogram, KeepsAllLevelsOfLimitedRangeApart) {
    // All 220 levels once, and white again and again: 256 is no multiple.
    const auto level = [](int, int x) { return 16 + std::min(x, 219); };
    const LumaHistogram luma = lumaOf(
        {.format = "yuv420p", .chromaSamples = allPixels / 2, .range = "tv", .file = "a.mkv"},
        level);
    EXPECT_EQ(std::count_if(luma.begin(), luma.end(), [](auto count) { return count > 0; }), 220);
    EXPECT_EQ(luma[0], heightPx);
    EXPECT_EQ(luma[255], heightPx * 37) << "white";
}

TEST(LumaHistogram, TakesTheBrightnessOutOfMixedLayouts) {
    const std::size_t white = 255;
    // Brightness in a plane of its own; side by side with colours; with transparency.
    const auto half = [](int grey, int light, int colour) {
        return [=](int component, int x) {
            return component == 1 ? colour : (x < widthPx / 2 ? grey : light);
        };
    };
    for (const LumaHistogram& luma :
         {lumaOf({.format = "nv12", .chromaSamples = allPixels / 2}, half(16, 235, 128)),
          lumaOf({.format = "yuyv422", .perPixel = 2}, half(16, 235, 128)),
          lumaOf({.format = "ya8", .perPixel = 2}, half(0, 255, 77))}) {
        EXPECT_EQ(luma[0], widthPx * heightPx / 2);
        EXPECT_EQ(luma[white], widthPx * heightPx / 2);
    }
}

TEST(LumaHistogram, PutsWhatIsBeyondLimitedRangeAtItsEnds) {
    const auto ends = [](int, int x) { return x < 128 ? 0 : 255; };
    const LumaHistogram luma = lumaOf(
        {.format = "yuv444p", .chromaSamples = 2 * allPixels, .range = "tv", .file = "a.mkv"},
        ends);
    EXPECT_EQ(luma[0], widthPx * heightPx / 2);
    EXPECT_EQ(luma[255], widthPx * heightPx / 2);
}

TEST(LumaHistogram, OfDeepSamplesIsThatOfEight) {
    const auto ofBits = [](int bits) { return [bits](int, int x) { return x << (bits - 8); }; };
    expectEven(lumaOf({.format = "gray10le", .bytesPerSample = 2}, ofBits(10)));
    expectEven(lumaOf({.format = "gray12le", .bytesPerSample = 2}, ofBits(12)));
    expectEven(lumaOf({.format = "gray16le", .bytesPerSample = 2}, ofBits(16)));
    expectEven(lumaOf({.format = "yuv422p10le",
                       .bytesPerSample = 2,
                       .chromaSamples = allPixels,
                       .middle = 512,
                       .range = "pc",
                       .file = "a.mkv"},
                      ofBits(10)));
}

TEST(LumaHistogram, OfDeepLimitedRangeReachesBothEnds) {
    const auto level = [](int, int x) { return 64 + x * 876 / 255; };
    const LumaHistogram luma = lumaOf({.format = "yuv420p10le",
                                       .bytesPerSample = 2,
                                       .chromaSamples = allPixels / 2,
                                       .middle = 512,
                                       .range = "tv",
                                       .file = "a.mkv"},
                                      level);
    EXPECT_EQ(luma[0], heightPx);
    EXPECT_EQ(luma[255], heightPx);
    EXPECT_NEAR(entropyOf(luma), 8, 0.01);
}

TEST(LumaHistogram, OfSingleBitsIsBlackAndWhite) {
    // Every bit a pixel.
    const FootageFiles files;
    const std::string quarter(widthPx * heightPx / 8 / 4, '\xff');
    const auto bytes = files.write("a.raw", quarter + std::string(3 * quarter.size(), '\0'));
    const auto lumaAs = [&](const std::string& format) {
        return pictureOf(files.make("a.nut", "-f rawvideo -s 256x16 -pix_fmt " + format + " -i '" +
                                                 bytes.string() + "' -c:v rawvideo"))
            .luma;
    };
    EXPECT_EQ(lumaAs("monow")[0], widthPx * heightPx / 4) << "1 is black";
    EXPECT_EQ(lumaAs("monow")[255], widthPx * heightPx * 3 / 4);
    EXPECT_EQ(lumaAs("monob")[255], widthPx * heightPx / 4) << "1 is white";
    EXPECT_EQ(lumaAs("monob")[0], widthPx * heightPx * 3 / 4);
}

TEST(LumaHistogram, IsCountedInFormatsThatOnlyTheScalerReads) {
    // Numbers with a fraction: 1.0 is white.
    const FootageFiles files;
    std::string pixels;
    for (int i = 0; i < widthPx * heightPx; ++i)
        pixels += i % 4 == 0 ? std::string("\x00\x00\x80\x3f", 4) : std::string(4, '\0');
    const LumaHistogram luma = pictureOf(files.write("a.pfm", "Pf\n256 16\n-1.0\n" + pixels)).luma;
    EXPECT_EQ(luma[0], widthPx * heightPx * 3 / 4);
    EXPECT_EQ(luma[255], widthPx * heightPx / 4);
}

TEST(LumaHistogram, OfPalettesIsThatOfTheirColours) {
    const FootageFiles files;
    const auto gif = files.make("a.gif",
                                "-f lavfi -i color=white:64x48:d=0.04,format=rgb24 -vf "
                                "\"drawbox=w=32:h=48:c=black:t=fill,split[a][b];"
                                "[a]palettegen[p];[b][p]paletteuse\"");
    const LumaHistogram luma = pictureOf(gif).luma;
    EXPECT_EQ(luma[0], 32 * 48);
    EXPECT_EQ(luma[255], 32 * 48);
}

TEST(LumaHistogram, OfPngAndJpegHasTheEntropyThatWasPutIn) {
    const FootageFiles files;
    const auto made = [&](const std::string& name, const std::string& expression) {
        const std::string arguments =
            "-f lavfi -i color=black:256x64,format=gray -frames:v 1 "
            "-q:v 1 -vf \"geq=lum='" +
            expression + "'\"";
        return entropyOf(pictureOf(files.make(name, arguments)).luma);
    };
    EXPECT_NEAR(made("even.png", "77"), 0, 1e-9);
    EXPECT_NEAR(made("halves.png", "255*gte(X,128)"), 1, 1e-9);
    EXPECT_NEAR(made("ramp.png", "X"), 8, 1e-9);
    EXPECT_NEAR(made("even.jpg", "77"), 0, 1e-9);
    EXPECT_NEAR(made("halves.jpg", "255*gte(X,128)"), 1, 1e-9);
}

// Size and colours.

struct Size {
    int widthPx;
    int heightPx;
    bool operator==(const Size&) const = default;
};

void PrintTo(const Size& size, std::ostream* out) {
    *out << size.widthPx << 'x' << size.heightPx;
}

Size sizeOf(const std::string& name, const std::string& arguments) {
    const FootageFiles files;
    const Picture picture = pictureOf(files.make(name, arguments));
    EXPECT_EQ(picture.bgr.size(), std::size_t{3} * static_cast<std::size_t>(picture.widthPx) *
                                      static_cast<std::size_t>(picture.heightPx));
    return {picture.widthPx, picture.heightPx};
}

std::string blue(const std::string& size) {
    return "-f lavfi -i color=blue:" + size + ",format=rgb24 -frames:v 1 ";
}

TEST(Picture, KeepsASmallSize) {
    for (const Size size : {Size{640, 480}, {33, 17}, {1, 1}, {2, 300}, {401, 3}, {639, 640}}) {
        const std::string text = std::to_string(size.widthPx) + "x" + std::to_string(size.heightPx);
        EXPECT_EQ(sizeOf("a.png", blue(text)), size);
    }
}

TEST(Picture, IsScaledDownToItsLongerSide) {
    EXPECT_EQ(sizeOf("a.png", blue("1920x1080")), (Size{640, 360}));
    EXPECT_EQ(sizeOf("a.png", blue("600x1281")), (Size{300, 640}));
    EXPECT_EQ(sizeOf("a.png", blue("20000x4")), (Size{640, 1}));
}

TEST(Picture, HasSquarePixels) {
    EXPECT_EQ(sizeOf("a.mkv", blue("300x200") + "-vf setsar=4/3"), (Size{400, 200}));
    EXPECT_EQ(sizeOf("a.mp4", blue("300x200") + "-vf setsar=2/3"), (Size{200, 200}));
    EXPECT_EQ(sizeOf("a.ts", blue("720x576") + "-vf setsar=64/45 -c:v mpeg2video -aspect 16:9"),
              (Size{640, 360}));
}

TEST(Picture, HasBlueGreenAndRedInThatOrder) {
    const FootageFiles files;
    const std::string lossless = "-strict experimental -c:v ffv1 -pix_fmt ";
    for (const std::string& stored :
         {lossless + "yuv420p", lossless + "yuv444p10le", lossless + "bgra",
          std::string("-c:v mjpeg -q:v 1 -pix_fmt yuvj420p")}) {
        SCOPED_TRACE(stored);
        const Picture picture = pictureOf(
            files.make("a.mkv", "-f lavfi -i color=0x204080:64x48 -frames:v 2 " + stored));
        for (std::size_t i = 0; i < picture.bgr.size(); i += 3) {
            ASSERT_NEAR(picture.bgr[i], 0x80, 4);
            ASSERT_NEAR(picture.bgr[i + 1], 0x40, 4);
            ASSERT_NEAR(picture.bgr[i + 2], 0x20, 4);
        }
    }
}

}  // namespace
}  // namespace reference_host_tests
