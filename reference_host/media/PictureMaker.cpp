#include "reference_host/media/PictureMaker.h"

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
    : scaler_(AV_PIX_FMT_BGR24, SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT) {}

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

}  // namespace reference_host::media
