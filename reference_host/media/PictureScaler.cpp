#include "reference_host/media/PictureScaler.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <array>
#include <utility>

namespace reference_host::media {
namespace {

/// A quarter of the samples for colour, in each direction, as PictureSample has them.
constexpr AVPixelFormat smallFormat = AV_PIX_FMT_YUV410P;
static_assert(scenes::lumaWidthPx == 4 * scenes::chromaWidthPx);
static_assert(scenes::lumaHeightPx == 4 * scenes::chromaHeightPx);

constexpr int smallWidthPx = static_cast<int>(scenes::lumaWidthPx);
constexpr int smallHeightPx = static_cast<int>(scenes::lumaHeightPx);

/// 1.0 in the scaler's fixed-point numbers: leave contrast and saturation as they are.
constexpr int unchanged = 1 << 16;

/// The formats whose name says that they are full range, and the same ones without that.
AVPixelFormat withoutRange(AVPixelFormat format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ420P:
            return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ411P:
            return AV_PIX_FMT_YUV411P;
        case AV_PIX_FMT_YUVJ422P:
            return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ440P:
            return AV_PIX_FMT_YUV440P;
        case AV_PIX_FMT_YUVJ444P:
            return AV_PIX_FMT_YUV444P;
        default:
            return format;
    }
}

/// Grey pictures are full range unless they say otherwise.
bool isGrey(AVPixelFormat format) {
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(format);
    return description != nullptr && description->nb_components <= 2 &&
           (description->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) == 0;
}

template <std::size_t size>
void copyPlane(std::array<std::uint8_t, size>& to, const AVFrame& from, int plane, int widthPx) {
    av_image_copy_plane(to.data(), widthPx, from.data[plane], from.linesize[plane], widthPx,
                        static_cast<int>(size) / widthPx);
}

}  // namespace

PictureScaler::PictureScaler() : small_(adopt(av_frame_alloc())) {
    small_->width = smallWidthPx;
    small_->height = smallHeightPx;
    small_->format = smallFormat;
    // Rows of its own, with room at their ends for the scaler's wide writes.
    if (av_frame_get_buffer(small_.get(), 0) < 0) throw std::bad_alloc();
}

PictureScaler::Source PictureScaler::sourceOf(const AVFrame& frame) {
    Source source;
    source.widthPx = frame.width;
    source.heightPx = frame.height;
    const auto format = static_cast<AVPixelFormat>(frame.format);
    source.format = withoutRange(format);
    source.fullRange = frame.color_range == AVCOL_RANGE_JPEG || source.format != format ||
                       (frame.color_range == AVCOL_RANGE_UNSPECIFIED && isGrey(format));
    source.space = frame.colorspace;
    return source;
}

bool PictureScaler::prepare(const Source& source) {
    if (scaler_ && source == source_) return true;
    scaler_.reset();
    AvPointer<SwsContext> scaler = adopt(sws_alloc_context());
    for (const auto& [option, value] : {std::pair{"srcw", source.widthPx},
                                        {"srch", source.heightPx},
                                        {"src_format", int{source.format}},
                                        {"dstw", smallWidthPx},
                                        {"dsth", smallHeightPx},
                                        {"dst_format", int{smallFormat}},
                                        {"sws_flags", SWS_AREA}}) {
        av_opt_set_int(scaler.get(), option, value, 0);
    }
    // Before the scaler is made ready: afterwards the ranges of deep formats are not converted any
    // more. The same coefficients on both sides: other ones would cost a detour over RGB, and
    // decisions about changes need no exact colours.
    const int* coefficients = sws_getCoefficients(source.space);
    sws_setColorspaceDetails(scaler.get(), coefficients, source.fullRange ? 1 : 0, coefficients, 1,
                             0, unchanged, unchanged);
    if (sws_init_context(scaler.get(), nullptr, nullptr) < 0) return false;
    scaler_ = std::move(scaler);
    source_ = source;
    return true;
}

bool PictureScaler::scale(const AVFrame& frame, scenes::PictureSample& picture) {
    if (!prepare(sourceOf(frame))) return false;
    if (sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, small_->data,
                  small_->linesize) <= 0) {
        return false;
    }
    copyPlane(picture.luma, *small_, 0, static_cast<int>(scenes::lumaWidthPx));
    copyPlane(picture.u, *small_, 1, static_cast<int>(scenes::chromaWidthPx));
    copyPlane(picture.v, *small_, 2, static_cast<int>(scenes::chromaWidthPx));
    return true;
}

}  // namespace reference_host::media
