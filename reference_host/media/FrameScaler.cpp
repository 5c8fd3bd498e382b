#include "reference_host/media/FrameScaler.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <utility>

#include "reference_host/media/pixelRange.h"

namespace reference_host::media {
namespace {

/// 1.0 in the scaler's fixed-point numbers: leave contrast and saturation as they are.
constexpr int unchanged = 1 << 16;

AvPointer<AVFrame> makeFrame(int widthPx, int heightPx, AVPixelFormat format) {
    AvPointer<AVFrame> frame = adopt(av_frame_alloc());
    frame->width = widthPx;
    frame->height = heightPx;
    frame->format = format;
    // Rows of its own, with room at their ends for the scaler's wide writes.
    if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
    return frame;
}

}  // namespace

FrameScaler::FrameScaler(AVPixelFormat format, int flags) : format_(format), flags_(flags) {}

bool FrameScaler::prepare(const Setup& setup) {
    if (scaler_ && setup == setup_) return true;
    scaler_.reset();
    AvPointer<SwsContext> scaler = adopt(sws_alloc_context());
    for (const auto& [option, value] : {std::pair{"srcw", setup.sourceWidthPx},
                                        {"srch", setup.sourceHeightPx},
                                        {"src_format", int{setup.sourceFormat}},
                                        {"dstw", setup.widthPx},
                                        {"dsth", setup.heightPx},
                                        {"dst_format", int{format_}},
                                        {"sws_flags", flags_}}) {
        av_opt_set_int(scaler.get(), option, value, 0);
    }
    // Before the scaler is made ready: afterwards the ranges of deep formats are not converted any
    // more. The same coefficients on both sides: other ones would cost a detour over RGB, and
    // decisions about changes need no exact colours.
    const int* coefficients = sws_getCoefficients(setup.space);
    sws_setColorspaceDetails(scaler.get(), coefficients, setup.fullRange ? 1 : 0, coefficients, 1,
                             0, unchanged, unchanged);
    if (sws_init_context(scaler.get(), nullptr, nullptr) < 0) return false;
    scaled_ = makeFrame(setup.widthPx, setup.heightPx, format_);
    scaler_ = std::move(scaler);
    setup_ = setup;
    return true;
}

const AVFrame* FrameScaler::scale(const AVFrame& frame, int widthPx, int heightPx) {
    const Setup setup{.sourceWidthPx = frame.width,
                      .sourceHeightPx = frame.height,
                      .sourceFormat = withoutRange(static_cast<AVPixelFormat>(frame.format)),
                      .fullRange = isFullRange(frame),
                      .space = frame.colorspace,
                      .widthPx = widthPx,
                      .heightPx = heightPx};
    if (!prepare(setup)) return nullptr;
    const int rows = sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height,
                               scaled_->data, scaled_->linesize);
    return rows > 0 ? scaled_.get() : nullptr;
}

}  // namespace reference_host::media
