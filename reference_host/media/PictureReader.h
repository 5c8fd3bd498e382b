#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

#include "reference_host/media/FootageFacts.h"
#include "reference_host/media/PictureSource.h"
#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host::media {

/// Reads the pictures of a video that tell its scenes, in ascending position. Belongs to one thread
/// at a time, and works on several.
class PictureReader {
public:
    struct Plan {
        /// The ratio by which changes have to stand out; see scenes::SceneAnalysis.
        double threshold = 3.0;
        /// How long a stretch may be of which no picture is given, in ticks.
        LongestGap gap = {};
        /// Pictures are kept, as many as take 56 MiB together, but not of shorter stretches than
        /// this each; 0 for none.
        std::int64_t shortestKeptTicks = 0;
        /// How many threads decode; 0 for as many as help.
        unsigned threads = 0;
    };

    /// Takes in, on the thread that is in next(), how much of the work is done: 0 to 1. It may go
    /// back.
    using Tell = std::function<void(double share)>;

    /// Opens `file`, of which `facts` were found before. Reading ends soon after `stop` is
    /// requested. Throws MediaError.
    PictureReader(const std::filesystem::path& file, const FootageFacts& facts, const Plan& plan,
                  std::stop_token stop, Tell tell);
    PictureReader(const PictureReader&) = delete;
    PictureReader& operator=(const PictureReader&) = delete;
    ~PictureReader();

    /// Fills in the next picture, whose position lies in the footage: 0 or more and below the
    /// duration. False at the end. A frame that is not shown after the one before it is left out.
    bool next(scenes::PictureFeatures& picture);

    Damage damage() const;

    /// A picture that was kept and where it is shown.
    struct Kept {
        std::int64_t positionTicks = 0;
        /// Null where it cannot be made.
        std::shared_ptr<const StoredPicture> picture;
    };

    /// Returns what was kept, in ascending order: of each of some equal stretches of the footage
    /// the sharpest of its pictures that were given. Which ones these are depends on the footage
    /// and the plan alone. Call it once, at the end.
    std::vector<Kept> takeKept();

private:
    class Stream;
    std::unique_ptr<Stream> stream_;
};

}  // namespace reference_host::media
