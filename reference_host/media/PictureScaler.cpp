#include "reference_host/media/PictureScaler.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <bit>

#include "reference_host/media/averagePlane.h"
#include "reference_host/media/pixelRange.h"

namespace reference_host::media {
namespace {

using scenes::chromaHeightPx;
using scenes::chromaWidthPx;
using scenes::lumaHeightPx;
using scenes::lumaWidthPx;

/// A quarter of the samples for colour, in each direction, as PictureSample has them.
constexpr AVPixelFormat smallFormat = AV_PIX_FMT_YUV410P;
static_assert(lumaWidthPx == 4 * chromaWidthPx && lumaHeightPx == 4 * chromaHeightPx);

constexpr std::uint8_t noColour = 128;

template <std::size_t size>
void copyPlane(std::array<std::uint8_t, size>& to, const AVFrame& from, int plane, int widthPx) {
    av_image_copy_plane(to.data(), widthPx, from.data[plane], from.linesize[plane], widthPx,
                        static_cast<int>(size) / widthPx);
}

/// Says whether a component has whole samples of bytes or of this machine's 16 bits.
bool isPlain(const AVComponentDescriptor& part, std::uint64_t flags) {
    const bool isBigEndian = (flags & AV_PIX_FMT_FLAG_BE) != 0;
    if (part.depth == 8) return part.shift == 0;
    return part.depth > 8 && part.depth <= 16 && part.step % 2 == 0 && part.offset % 2 == 0 &&
           isBigEndian == (std::endian::native == std::endian::big);
}

/// Says whether a format has brightness in a plane of its own, and colour, if any, in others, all
/// of them as integers that mean what they say.
bool hasPlainPlanes(const AVPixFmtDescriptor& description) {
    constexpr std::uint64_t others = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL |
                                     AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BITSTREAM |
                                     AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
    const int parts = description.nb_components;
    const auto* part = description.comp;
    if ((description.flags & others) != 0 || parts == 0 || parts == 2) return false;
    if (parts >= 3 && (part[1].plane == part[0].plane || part[2].plane == part[0].plane))
        return false;
    return std::all_of(part, part + std::min(parts, 3), [&](const AVComponentDescriptor& one) {
        return isPlain(one, description.flags);
    });
}

SamplePlane planeOf(const AVFrame& frame, const AVPixFmtDescriptor& description, int index) {
    const AVComponentDescriptor& part = description.comp[index];
    const int shiftX = index == 0 ? 0 : description.log2_chroma_w;
    const int shiftY = index == 0 ? 0 : description.log2_chroma_h;
    const int bytes = part.depth == 8 ? 1 : 2;
    return {.samples = frame.data[part.plane] + part.offset,
            .strideBytes = frame.linesize[part.plane],
            .widthPx = static_cast<std::size_t>(AV_CEIL_RSHIFT(frame.width, shiftX)),
            .heightPx = static_cast<std::size_t>(AV_CEIL_RSHIFT(frame.height, shiftY)),
            .bytesPerSample = static_cast<std::size_t>(bytes),
            .step = static_cast<std::size_t>(part.step / bytes)};
}

/// Returns what takes samples of a component to full range of 8 bits. In limited range, brightness
/// has 219 steps from 16 on, and colour 224 around 128, of 8 bits.
Levels levelsOf(const AVComponentDescriptor& part, bool isLuma, bool fullRange) {
    const auto unit = static_cast<float>(1U << (part.depth - 8 + part.shift));
    if (fullRange) return {.gain = 1 / unit, .offset = 0};
    const float contrast = 255.0F / (isLuma ? 219.0F : 224.0F);
    const float offset = isLuma ? -16 * contrast : noColour * (1 - contrast);
    return {.gain = contrast / unit, .offset = offset};
}

/// Averages the planes themselves, which takes a fourth of the scaler's time. False, and `picture`
/// is as it was, where the frame's layout is another, or where it would have to be enlarged.
bool averagePlanes(const AVFrame& frame, scenes::PictureSample& picture) {
    const AVPixFmtDescriptor* description =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (description == nullptr || !hasPlainPlanes(*description)) return false;
    const bool hasColour = description->nb_components >= 3;
    const SamplePlane luma = planeOf(frame, *description, 0);
    const SamplePlane u = hasColour ? planeOf(frame, *description, 1) : SamplePlane{};
    const SamplePlane v = hasColour ? planeOf(frame, *description, 2) : SamplePlane{};
    if (!canAverage(luma, lumaWidthPx, lumaHeightPx)) return false;
    if (hasColour && !canAverage(u, chromaWidthPx, chromaHeightPx)) return false;

    const bool fullRange = isFullRange(frame);
    averagePlane(luma, levelsOf(description->comp[0], true, fullRange), lumaWidthPx, lumaHeightPx,
                 picture.luma.data());
    if (!hasColour) {
        picture.u.fill(noColour);
        picture.v.fill(noColour);
        return true;
    }
    averagePlane(u, levelsOf(description->comp[1], false, fullRange), chromaWidthPx, chromaHeightPx,
                 picture.u.data());
    averagePlane(v, levelsOf(description->comp[2], false, fullRange), chromaWidthPx, chromaHeightPx,
                 picture.v.data());
    return true;
}

}  // namespace

PictureScaler::PictureScaler() : scaler_(smallFormat, SWS_AREA) {}

bool PictureScaler::scale(const AVFrame& frame, scenes::PictureSample& picture) {
    if (averagePlanes(frame, picture)) return true;
    const AVFrame* small =
        scaler_.scale(frame, static_cast<int>(lumaWidthPx), static_cast<int>(lumaHeightPx));
    if (small == nullptr) return false;
    copyPlane(picture.luma, *small, 0, static_cast<int>(lumaWidthPx));
    copyPlane(picture.u, *small, 1, static_cast<int>(chromaWidthPx));
    copyPlane(picture.v, *small, 2, static_cast<int>(chromaWidthPx));
    return true;
}

}  // namespace reference_host::media
