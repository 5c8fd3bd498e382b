#include "reference_host/media/PictureScaler.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <array>

namespace reference_host::media {
namespace {

/// A quarter of the samples for colour, in each direction, as PictureSample has them.
constexpr AVPixelFormat smallFormat = AV_PIX_FMT_YUV410P;
static_assert(scenes::lumaWidthPx == 4 * scenes::chromaWidthPx);
static_assert(scenes::lumaHeightPx == 4 * scenes::chromaHeightPx);

template <std::size_t size>
void copyPlane(std::array<std::uint8_t, size>& to, const AVFrame& from, int plane, int widthPx) {
    av_image_copy_plane(to.data(), widthPx, from.data[plane], from.linesize[plane], widthPx,
                        static_cast<int>(size) / widthPx);
}

}  // namespace

PictureScaler::PictureScaler() : scaler_(smallFormat, SWS_AREA) {}

bool PictureScaler::scale(const AVFrame& frame, scenes::PictureSample& picture) {
    const AVFrame* small = scaler_.scale(frame, static_cast<int>(scenes::lumaWidthPx),
                                         static_cast<int>(scenes::lumaHeightPx));
    if (small == nullptr) return false;
    copyPlane(picture.luma, *small, 0, static_cast<int>(scenes::lumaWidthPx));
    copyPlane(picture.u, *small, 1, static_cast<int>(scenes::chromaWidthPx));
    copyPlane(picture.v, *small, 2, static_cast<int>(scenes::chromaWidthPx));
    return true;
}

}  // namespace reference_host::media
