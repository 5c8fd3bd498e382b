#pragma once

#include <cstdint>
#include <map>
#include <memory>
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

    std::int64_t partOf(std::int64_t timestamp) const;
};

/// Keeps the sharpest picture of each part of the time. Belongs to one thread at a time.
class PictureKeeper {
public:
    /// `stream` has to outlive this.
    PictureKeeper(const AVStream& stream, const TimeGrid& grid) : stream_(stream), grid_(grid) {}

    /// Takes in a frame, which is used until some further ones have been taken in.
    void offer(const AVFrame& frame, std::int64_t timestamp, float sharpness);

    /// Returns what was kept since the last call, in ascending order.
    std::vector<KeptPicture> take();

private:
    struct Candidate {
        KeptPicture kept;
        /// What `kept` is still to be made from; null afterwards.
        AvPointer<AVFrame> frame;
    };

    void store(Candidate& candidate);
    void storeOldest();

    const AVStream& stream_;
    const TimeGrid grid_;
    PictureMaker maker_;
    std::map<std::int64_t, Candidate> candidates_;
    std::size_t frames_ = 0;
};

/// Makes one of two lists in ascending order, of which the second goes on where the first ends: of
/// the two pictures that stand for the same part, the sharper.
void append(std::vector<KeptPicture>& kept, std::vector<KeptPicture> more, const TimeGrid& grid);

}  // namespace reference_host::media
