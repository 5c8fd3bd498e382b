#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stop_token>

#include "reference_host/media/FootageFacts.h"
#include "reference_host/scenes/PictureSample.h"

namespace reference_host::media {

/// Reads all pictures of a media file, each decoded once, in ascending position. Belongs to one
/// thread at a time.
class PictureReader {
public:
    /// Opens `file`, of which `facts` were found before. Reading ends soon after `stop` is
    /// requested. Throws MediaError.
    PictureReader(const std::filesystem::path& file, const FootageFacts& facts,
                  std::stop_token stop);
    PictureReader(const PictureReader&) = delete;
    PictureReader& operator=(const PictureReader&) = delete;
    ~PictureReader();

    /// Fills in the next picture, whose position lies in the footage: 0 or more and below the
    /// duration. False at the end; `picture` is then as it was. A frame that is not shown after the
    /// one before it is left out.
    bool next(scenes::PictureSample& picture);

    /// How many frames were lost or incomplete, of how many.
    struct Damage {
        std::int64_t damaged;
        std::int64_t all;
    };
    Damage damage() const;

private:
    class Stream;
    std::unique_ptr<Stream> stream_;
};

}  // namespace reference_host::media
