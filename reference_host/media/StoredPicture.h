#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "reference_host/media/Orientation.h"
#include "reference_host/vision/Picture.h"

namespace reference_host::media {

/// A picture as small as it is looked at by itself, kept in a third of the memory that it takes
/// then: not yet upright, and with colours at half the size.
struct StoredPicture {
    int widthPx = 0;
    int heightPx = 0;
    /// Brightness, then both colour differences at half the size, rounded up: 8 bits, full range,
    /// rows from top to bottom without padding.
    std::vector<std::uint8_t> planes;
    /// Which colours the differences stand for: one of FFmpeg's AVColorSpace.
    int colorSpace = 0;
    Orientation orientation;
    vision::LumaHistogram luma{};
};

/// Returns the bytes that a stored picture of this size takes.
std::size_t storedBytes(int widthPx, int heightPx);

/// Counts the memory of all pictures that are kept in the process. Any thread.
class PictureMemory {
public:
    /// Returns the picture, which counts until its last holder lets go of it.
    static std::shared_ptr<const StoredPicture> keep(StoredPicture picture);

    /// How much is kept now.
    static std::int64_t takenBytes();
};

}  // namespace reference_host::media
