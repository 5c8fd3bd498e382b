#pragma once

#include "reference_host/media/AvPointers.h"

namespace reference_host::media {

/// Scales decoded frames, and turns them into full range and one pixel format. The frames' size and
/// format may change from one to the next. Belongs to one thread at a time.
class FrameScaler {
public:
    /// `flags` are those of libswscale.
    FrameScaler(AVPixelFormat format, int flags);

    /// Returns `frame` in that size, valid until the next call; null for a pixel format that cannot
    /// be read.
    const AVFrame* scale(const AVFrame& frame, int widthPx, int heightPx);

private:
    /// What the scaler has to be set up anew for.
    struct Setup {
        int sourceWidthPx = 0;
        int sourceHeightPx = 0;
        AVPixelFormat sourceFormat = AV_PIX_FMT_NONE;
        bool fullRange = false;
        AVColorSpace space = AVCOL_SPC_UNSPECIFIED;
        int widthPx = 0;
        int heightPx = 0;
        bool operator==(const Setup&) const = default;
    };

    bool prepare(const Setup& setup);

    AVPixelFormat format_;
    int flags_;
    AvPointer<AVFrame> scaled_;
    AvPointer<SwsContext> scaler_;
    Setup setup_;
};

}  // namespace reference_host::media
