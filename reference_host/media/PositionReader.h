#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stop_token>

#include "reference_host/media/FootageFacts.h"
#include "reference_host/media/StoredPicture.h"
#include "reference_host/vision/Picture.h"

namespace reference_host::media {

/// Reads single pictures of a media file. Belongs to one thread at a time.
///
/// A position is reached from the key frame before it, and positions that are asked for in
/// ascending order share the way. Footage whose packets lack timestamps, step back in time or share
/// one is decoded from its beginning once, since nobody else knows where its frames are.
class PositionReader {
public:
    /// Opens `file`, of which `facts` were found before. Reading ends soon after `stop` is
    /// requested. Throws MediaError.
    PositionReader(const std::filesystem::path& file, const FootageFacts& facts,
                   std::stop_token stop);
    PositionReader(const PositionReader&) = delete;
    PositionReader& operator=(const PositionReader&) = delete;
    ~PositionReader();

    /// Fills in the picture that is shown at `positionTicks`; for a photo the one that there is,
    /// whatever the position. False where there is none that can be decoded; `picture` then means
    /// nothing.
    bool read(std::int64_t positionTicks, vision::Picture& picture);

    /// How many pixels a frame has, as far as the file tells before one is decoded; 0 where it does
    /// not.
    std::int64_t framePixels() const;

    /// Fills in the picture that read() would, from what was kept of it. False where there is no
    /// memory for it.
    bool restore(const StoredPicture& stored, vision::Picture& picture);

    /// What reading has taken so far.
    struct Effort {
        /// How often reading went on from another place of the file.
        std::int64_t jumps = 0;
        /// Packets of the video that were read.
        std::int64_t packets = 0;
        /// Frames that were decoded.
        std::int64_t frames = 0;
    };
    Effort effort() const;

private:
    class Stream;
    std::unique_ptr<Stream> stream_;
};

}  // namespace reference_host::media
