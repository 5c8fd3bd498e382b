#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "reference_host/media/AvPointers.h"
#include "reference_host/media/PictureMaker.h"
#include "reference_host/media/StoredPicture.h"

namespace reference_host::media {

/// A picture that stands for a short time around it.
struct KeptPicture {
    /// When it is shown, in the unit of its stream.
    std::int64_t timestamp = 0;
    /// See scenes::PictureFeatures.
    float sharpness = 0;
    /// Null where it cannot be made.
    std::shared_ptr<const StoredPicture> picture;
};

/// Divides the time into equal parts, in the unit of a stream.
struct TimeGrid {
    std::int64_t origin = 0;
    /// How long a part is; 0 where there are none.
    std::int64_t step = 0;
    /// How many pictures may be kept beyond one of each part.
    std::size_t extras = 0;

    std::int64_t partOf(std::int64_t timestamp) const;
};

/// Keeps the sharpest picture of each part of the time, and where the view changes within a part
/// that of either view: short scenes are to have one. Belongs to one thread at a time.
class PictureKeeper {
public:
    /// `stream` has to outlive this.
    PictureKeeper(const AVStream& stream, const TimeGrid& grid) : stream_(stream), grid_(grid) {}

    /// Takes in a frame, which is used until some further ones have been taken in.
    void offer(const AVFrame& frame, std::int64_t timestamp, float sharpness);

    /// Takes in that another view may begin at a picture, before that is offered. Of several such
    /// in a part the first counts.
    void changeView(std::int64_t timestamp);

    /// Returns what was kept since the last call, in ascending order.
    std::vector<KeptPicture> take();

private:
    /// A part, or what is in it from a change of view on.
    struct Place {
        std::int64_t part = 0;
        bool isBehindChange = false;

        auto operator<=>(const Place&) const = default;
    };

    struct Candidate {
        KeptPicture kept;
        /// What `kept` is still to be made from; null afterwards.
        AvPointer<AVFrame> frame;
    };

    Place placeOf(std::int64_t timestamp) const;
    void store(Candidate& candidate);
    void storeOldest();

    const AVStream& stream_;
    const TimeGrid grid_;
    PictureMaker maker_;
    std::map<Place, Candidate> candidates_;
    /// Where the view changes in a part.
    std::map<std::int64_t, std::int64_t> changes_;
    std::size_t frames_ = 0;
};

/// Puts together what was kept of stretches that follow each other. Belongs to one thread at a
/// time.
class KeptPictures {
public:
    explicit KeptPictures(const TimeGrid& grid) : grid_(grid) {}

    /// `more` is in ascending order, and behind what was appended before. Of pictures of one part
    /// the sharper stays once as many extras are there as may be.
    void append(std::vector<KeptPicture> more);

    std::vector<KeptPicture> take() { return std::move(kept_); }

private:
    const TimeGrid grid_;
    std::vector<KeptPicture> kept_;
    std::size_t extras_ = 0;
};

}  // namespace reference_host::media
