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

/// Allots the memory that all pictures kept in the process may take together. Any thread.
class PictureMemory {
public:
    static constexpr std::int64_t limitBytes = std::int64_t{64} << 20;

    /// Returns the picture, to be kept until its last holder lets go of it; null where all memory
    /// is allotted.
    static std::shared_ptr<const StoredPicture> keep(StoredPicture picture);

    /// How much is allotted now.
    static std::int64_t takenBytes();
};

}  // namespace reference_host::media
