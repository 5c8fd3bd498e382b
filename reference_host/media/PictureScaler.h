#pragma once

#include "reference_host/media/AvPointers.h"
#include "reference_host/scenes/PictureSample.h"

namespace reference_host::media {

/// Makes small pictures of decoded frames. Size and format may change from frame to frame. Belongs
/// to one thread at a time.
class PictureScaler {
public:
    PictureScaler();

    /// Fills in `picture`, its position aside. False, and `picture` is as it was, for a pixel
    /// format that cannot be read.
    bool scale(const AVFrame& frame, scenes::PictureSample& picture);

private:
    /// What the scaler has to be set up anew for.
    struct Source {
        int widthPx = 0;
        int heightPx = 0;
        AVPixelFormat format = AV_PIX_FMT_NONE;
        bool fullRange = false;
        AVColorSpace space = AVCOL_SPC_UNSPECIFIED;
        bool operator==(const Source&) const = default;
    };

    static Source sourceOf(const AVFrame& frame);
    bool prepare(const Source& source);

    AvPointer<AVFrame> small_;
    AvPointer<SwsContext> scaler_;
    Source source_;
};

}  // namespace reference_host::media
