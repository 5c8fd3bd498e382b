extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/PictureScaler.h"
#include "reference_host/media/averagePlane.h"

namespace reference_host_tests {
namespace {

using reference_host::media::adopt;
using reference_host::media::AvPointer;
using reference_host::media::FrameScaler;
using reference_host::media::PictureScaler;
using reference_host::media::rowStepOf;
using reference_host::scenes::PictureSample;

/// Twice the size of the result in each direction: the scaler's parts are whole pixels, too.
constexpr int widthPx = 384;
constexpr int heightPx = 216;

AvPointer<AVFrame> makeFrame(AVPixelFormat format, int width, int height) {
    AvPointer<AVFrame> frame = adopt(av_frame_alloc());
    frame->format = format;
    frame->width = width;
    frame->height = height;
    EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
    // Samples are written into what is there, since several may share a byte.
    for (int i = 0; i < AV_NUM_DATA_POINTERS && frame->buf[i] != nullptr; ++i)
        std::fill_n(frame->buf[i]->data, frame->buf[i]->size, std::uint8_t{0});
    return frame;
}

/// Makes a frame of noise, each component with noise of its own, inside of limited range. Rows of
/// which not all are read are alike.
AvPointer<AVFrame> noise(AVPixelFormat format, int width = widthPx, int height = heightPx) {
    AvPointer<AVFrame> frame = makeFrame(format, width, height);
    const AVPixFmtDescriptor& description = *av_pix_fmt_desc_get(format);
    std::uint32_t seed = 1;
    for (int part = 0; part < description.nb_components; ++part) {
        const bool isColour = part == 1 || part == 2;
        const int shiftX = isColour ? description.log2_chroma_w : 0;
        const int shiftY = isColour ? description.log2_chroma_h : 0;
        const int depth = description.comp[part].depth;
        // Not around the middle, which would hide exchanged and wrongly stretched components.
        const std::uint32_t lowest = 20U + 60U * static_cast<std::uint32_t>(part % 3);
        std::vector<std::uint16_t> row(static_cast<std::size_t>(AV_CEIL_RSHIFT(width, shiftX)));
        const int rows = AV_CEIL_RSHIFT(height, shiftY);
        const auto step =
            static_cast<int>(rowStepOf(static_cast<std::size_t>(rows), isColour ? 27 : 108));
        for (int y = 0; y < rows; ++y) {
            if (y % step == 0) {
                for (std::uint16_t& sample : row) {
                    seed = seed * 1664525U + 1013904223U;
                    sample =
                        static_cast<std::uint16_t>((lowest + (seed >> 8U) % 80U) << (depth - 8));
                }
            }
            av_write_image_line2(row.data(), frame->data, frame->linesize, &description, 0, y, part,
                                 static_cast<int>(row.size()), sizeof(std::uint16_t));
        }
    }
    return frame;
}

template <std::size_t size>
int farthest(const std::array<std::uint8_t, size>& values, const AVFrame& frame, int plane,
             std::size_t width) {
    int result = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint8_t* row =
            frame.data[plane] + static_cast<std::ptrdiff_t>(i / width) * frame.linesize[plane];
        result = std::max(result, std::abs(values[i] - row[i % width]));
    }
    return result;
}

/// Expects the values that the scaler gives.
void expectLikeScaler(const AVFrame& frame, int tolerance) {
    const auto picture = std::make_unique<PictureSample>();
    PictureScaler scaler;
    ASSERT_TRUE(scaler.scale(frame, *picture));
    FrameScaler plain(AV_PIX_FMT_YUV410P, SWS_AREA);
    const AVFrame* expected = plain.scale(frame, 192, 108);
    ASSERT_NE(expected, nullptr);
    EXPECT_LE(farthest(picture->luma, *expected, 0, 192), tolerance);
    EXPECT_LE(farthest(picture->u, *expected, 1, 48), tolerance);
    EXPECT_LE(farthest(picture->v, *expected, 2, 48), tolerance);
}

class PictureScalerFormats : public testing::TestWithParam<const char*> {};

TEST_P(PictureScalerFormats, GivesWhatTheScalerGives) {
    const AVPixelFormat format = av_get_pix_fmt(GetParam());
    const bool isGrey = av_pix_fmt_desc_get(format)->nb_components < 3;
    const AvPointer<AVFrame> frame = noise(format);
    for (const AVColorRange range : {AVCOL_RANGE_UNSPECIFIED, AVCOL_RANGE_MPEG, AVCOL_RANGE_JPEG}) {
        SCOPED_TRACE(av_color_range_name(range));
        // The scaler stretches no grey at all.
        if (isGrey && range == AVCOL_RANGE_MPEG) continue;
        frame->color_range = range;
        expectLikeScaler(*frame, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Planes, PictureScalerFormats,
                         testing::Values("yuv420p", "yuvj420p", "yuv422p", "yuv444p", "yuv440p",
                                         "yuv411p", "yuv410p", "yuva420p", "nv12", "nv21", "nv24",
                                         "yuv420p9le", "yuv420p10le", "yuv422p12le", "yuv444p16le",
                                         "p010le", "p016le", "p210le", "gray", "gray10le",
                                         "gray12le", "gray16le"));
// Left to the scaler.
INSTANTIATE_TEST_SUITE_P(Others, PictureScalerFormats,
                         testing::Values("yuyv422", "uyvy422", "ya8", "yuv420p10be", "rgb24",
                                         "gbrp", "bgra"));

TEST(PictureScaler, StretchesBlackAndWhiteToTheEnds) {
    for (const auto& [format, range, black, white] :
         {std::tuple{AV_PIX_FMT_YUV420P, AVCOL_RANGE_UNSPECIFIED, 16, 235},
          {AV_PIX_FMT_YUV420P, AVCOL_RANGE_JPEG, 0, 255},
          {AV_PIX_FMT_YUVJ420P, AVCOL_RANGE_UNSPECIFIED, 0, 255},
          {AV_PIX_FMT_NV12, AVCOL_RANGE_MPEG, 16, 235},
          {AV_PIX_FMT_GRAY8, AVCOL_RANGE_UNSPECIFIED, 0, 255},
          {AV_PIX_FMT_GRAY8, AVCOL_RANGE_MPEG, 16, 235}}) {
        for (const auto& [value, level] : {std::pair{black, 0}, {white, 255}}) {
            const AvPointer<AVFrame> frame = noise(format);
            frame->color_range = range;
            for (int y = 0; y < heightPx; ++y)
                std::fill_n(frame->data[0] + y * frame->linesize[0], widthPx,
                            static_cast<std::uint8_t>(value));
            PictureScaler scaler;
            const auto picture = std::make_unique<PictureSample>();
            ASSERT_TRUE(scaler.scale(*frame, *picture));
            const auto luma = picture->luma;
            EXPECT_EQ(*std::min_element(luma.begin(), luma.end()), level);
            EXPECT_EQ(*std::max_element(luma.begin(), luma.end()), level);
        }
    }
}

TEST(PictureScaler, GreyHasNoColour) {
    PictureScaler scaler;
    const auto picture = std::make_unique<PictureSample>();
    ASSERT_TRUE(scaler.scale(*noise(AV_PIX_FMT_GRAY8), *picture));
    EXPECT_EQ(std::count(picture->u.begin(), picture->u.end(), 128), 48 * 27);
    EXPECT_EQ(std::count(picture->v.begin(), picture->v.end(), 128), 48 * 27);
}

TEST(PictureScaler, TakesSizesAndFormatsInTurn) {
    PictureScaler scaler;
    const auto again = std::make_unique<PictureSample>();
    const auto once = std::make_unique<PictureSample>();
    for (const auto& [format, width, height] : {std::tuple{AV_PIX_FMT_YUV420P, 1280, 720},
                                                {AV_PIX_FMT_NV12, 641, 361},
                                                {AV_PIX_FMT_RGB24, 320, 240},
                                                {AV_PIX_FMT_YUV420P, 64, 48},
                                                {AV_PIX_FMT_P010LE, 1920, 1080},
                                                {AV_PIX_FMT_GRAY8, 193, 109},
                                                {AV_PIX_FMT_YUV420P, 108, 1920}}) {
        const AvPointer<AVFrame> frame = noise(format, width, height);
        ASSERT_TRUE(scaler.scale(*frame, *again));
        ASSERT_TRUE(PictureScaler().scale(*frame, *once));
        EXPECT_EQ(again->luma, once->luma);
        EXPECT_EQ(again->u, once->u);
        EXPECT_EQ(again->v, once->v);
    }
}

TEST(PictureScaler, LeavesEnlargingToTheScaler) {
    for (const auto& [width, height] : {std::pair{190, 216}, {384, 106}, {64, 48}}) {
        expectLikeScaler(*noise(AV_PIX_FMT_YUV420P, width, height), 0);
    }
}

TEST(PictureScaler, RefusesWhatCannotBeRead) {
    AvPointer<AVFrame> frame = noise(AV_PIX_FMT_YUV420P);
    frame->format = AV_PIX_FMT_VAAPI;
    PictureScaler scaler;
    const auto picture = std::make_unique<PictureSample>();
    picture->luma.fill(7);
    EXPECT_FALSE(scaler.scale(*frame, *picture));
    EXPECT_EQ(std::count(picture->luma.begin(), picture->luma.end(), 7), 192 * 108);
}

}  // namespace
}  // namespace reference_host_tests
