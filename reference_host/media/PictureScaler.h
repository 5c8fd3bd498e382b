#pragma once

#include "reference_host/media/FrameScaler.h"
#include "reference_host/scenes/PictureSample.h"

namespace reference_host::media {

/// Makes small pictures of decoded frames. Size and format may change from frame to frame. Belongs
/// to one thread at a time.
///
/// Brightness and colour that are stored in planes, which is how nearly all videos are decoded, are
/// averaged here; other layouts, and pictures smaller than the result, are left to libswscale.
class PictureScaler {
public:
    PictureScaler();

    /// Fills in `picture`, its position aside. False, and `picture` is as it was, for a pixel
    /// format that cannot be read.
    bool scale(const AVFrame& frame, scenes::PictureSample& picture);

private:
    FrameScaler scaler_;
};

}  // namespace reference_host::media
