#include "reference_host/media/PictureMaker.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cmath>
#include <optional>

#include "reference_host/media/countLuma.h"

namespace reference_host::media {
namespace {

constexpr int bytesPerPixel = 3;

struct Size {
    int widthPx;
    int heightPx;
};

/// Returns the size of `frame` with square pixels, scaled down where it is too large.
Size shownSize(const AVFrame& frame, AVRational aspect) {
    const bool isKnown = aspect.num > 0 && aspect.den > 0;
    const double width = frame.width * (isKnown ? av_q2d(aspect) : 1.0);
    const double height = frame.height;
    const double scale = std::min(1.0, vision::maxPictureSidePx / std::max(width, height));
    const auto side = [scale](double length) {
        return static_cast<int>(std::max(1L, std::lround(length * scale)));
    };
    return {side(width), side(height)};
}

void copyUpright(const AVFrame& stored, Orientation orientation, vision::Picture& picture) {
    const bool swaps = orientation.swapsSides();
    picture.widthPx = swaps ? stored.height : stored.width;
    picture.heightPx = swaps ? stored.width : stored.height;
    picture.bgr.resize(static_cast<std::size_t>(picture.widthPx) *
                       static_cast<std::size_t>(picture.heightPx) * bytesPerPixel);
    auto to = picture.bgr.begin();
    for (int y = 0; y < picture.heightPx; ++y) {
        for (int x = 0; x < picture.widthPx; ++x) {
            const Place from = storedPlace({x, y}, orientation, stored.width, stored.height);
            const std::uint8_t* pixel = stored.data[0] +
                                        std::ptrdiff_t{from.y} * stored.linesize[0] +
                                        std::ptrdiff_t{from.x} * bytesPerPixel;
            to = std::copy_n(pixel, bytesPerPixel, to);
        }
    }
}

}  // namespace

PictureMaker::PictureMaker()
    : scaler_(AV_PIX_FMT_BGR24, SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT),
      smallScaler_(AV_PIX_FMT_YUV420P, SWS_AREA | SWS_ACCURATE_RND) {}

bool PictureMaker::make(const AVFrame& frame, AVRational aspect, Orientation orientation,
                        vision::Picture& picture) {
    const Size size = shownSize(frame, aspect);
    const AVFrame* scaled = scaler_.scale(frame, size.widthPx, size.heightPx);
    if (scaled == nullptr) return false;
    const std::optional<vision::LumaHistogram> luma = countLuma(frame);
    if (!luma) return false;
    copyUpright(*scaled, orientation, picture);
    picture.luma = *luma;
    return true;
}

bool PictureMaker::store(const AVFrame& frame, AVRational aspect, Orientation orientation,
                         StoredPicture& stored) {
    const Size size = shownSize(frame, aspect);
    const AVFrame* small = smallScaler_.scale(frame, size.widthPx, size.heightPx);
    if (small == nullptr) return false;
    const std::optional<vision::LumaHistogram> luma = countLuma(frame);
    if (!luma) return false;
    stored.widthPx = size.widthPx;
    stored.heightPx = size.heightPx;
    stored.planes.resize(storedBytes(size.widthPx, size.heightPx));
    av_image_copy_to_buffer(stored.planes.data(), static_cast<int>(stored.planes.size()),
                            small->data, small->linesize, AV_PIX_FMT_YUV420P, size.widthPx,
                            size.heightPx, 1);
    stored.colorSpace = frame.colorspace;
    stored.orientation = orientation;
    stored.luma = *luma;
    return true;
}

bool PictureMaker::restore(const StoredPicture& stored, vision::Picture& picture) {
    const AvPointer<AVFrame> frame = adopt(av_frame_alloc());
    frame->width = stored.widthPx;
    frame->height = stored.heightPx;
    frame->format = AV_PIX_FMT_YUV420P;
    frame->color_range = AVCOL_RANGE_JPEG;
    frame->colorspace = static_cast<AVColorSpace>(stored.colorSpace);
    av_image_fill_arrays(frame->data, frame->linesize, stored.planes.data(), AV_PIX_FMT_YUV420P,
                         stored.widthPx, stored.heightPx, 1);
    const AVFrame* scaled = scaler_.scale(*frame, stored.widthPx, stored.heightPx);
    if (scaled == nullptr) return false;
    copyUpright(*scaled, stored.orientation, picture);
    picture.luma = stored.luma;
    return true;
}

}  // namespace reference_host::media
