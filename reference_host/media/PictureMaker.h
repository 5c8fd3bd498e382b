#pragma once

#include "reference_host/media/FrameScaler.h"
#include "reference_host/media/Orientation.h"
#include "reference_host/media/StoredPicture.h"
#include "reference_host/vision/Picture.h"

namespace reference_host::media {

/// Makes upright pictures of decoded frames. Belongs to one thread at a time.
class PictureMaker {
public:
    PictureMaker();

    /// Fills in `picture`. `aspect` is how wide a pixel of the frame is in proportion to its
    /// height; anything but a positive number stands for a square. False, and `picture` means
    /// nothing, for a pixel format that cannot be read.
    bool make(const AVFrame& frame, AVRational aspect, Orientation orientation,
              vision::Picture& picture);

    /// Fills in `stored`, from which restore() makes the picture: its brightness is that of make(),
    /// its colours are a little coarser. Fails as make().
    bool store(const AVFrame& frame, AVRational aspect, Orientation orientation,
               StoredPicture& stored);

    /// Fills in `picture`. False where there is no memory for it.
    bool restore(const StoredPicture& stored, vision::Picture& picture);

private:
    FrameScaler scaler_;
    FrameScaler smallScaler_;
};

}  // namespace reference_host::media
