#pragma once

#include <cstdint>
#include <optional>

#include "reference_host/media/Container.h"
#include "reference_host/media/ParameterSets.h"
#include "reference_host/media/Segment.h"

namespace reference_host::media {

/// Divides the packets of a video into segments. Belongs to one thread at a time.
class SegmentReader {
public:
    /// Reads what `container`, which has to outlive this, gives from now on.
    explicit SegmentReader(Container& container);

    /// Returns the next segment; none at the end.
    ///
    /// Throws SegmentTooLong for one that would take more memory than a segment may, and
    /// NotDivisible where a group cannot be decoded without parameters that came before it.
    std::optional<Segment> next();

private:
    AvPointer<AVPacket> read();
    bool beginsGroup(const AVPacket& packet, const PacketGroup& group) const;
    PacketGroup readGroup();

    Container& container_;
    /// Every picture of this format is coded by itself.
    bool isIntraOnly_;
    /// The group that comes next.
    PacketGroup pending_;
    /// The first packet of the group behind it.
    AvPointer<AVPacket> ahead_;
    /// Parameters of the decoder that came with an earlier packet, and hold from there on.
    AvPointer<AVPacket> parameters_;
    ParameterSets sets_;
    std::int64_t segments_ = 0;
};

/// A video cannot be divided into segments of an acceptable size.
struct SegmentTooLong {};

}  // namespace reference_host::media
