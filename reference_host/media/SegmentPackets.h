#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference_host/media/PacketPlan.h"
#include "reference_host/media/PictureSource.h"
#include "reference_host/media/Segment.h"

namespace reference_host::media {

/// What the packets of a segment tell before they are decoded. Groups are numbered from 0; behind
/// the last one comes what is known of the next segment's first.
class SegmentPackets {
public:
    /// `segment` has to outlive this. `gap` says how long a stretch may be of which nothing is
    /// decoded, in the unit of the stream.
    SegmentPackets(const Segment& segment, const LongestGap& gap);

    /// How many groups the segment has.
    std::size_t groups() const { return segment_.groups.size(); }

    /// How many packets the segment has.
    std::size_t count() const { return count_; }

    /// Returns when the pictures between the segment's first key frame and the next segment's are
    /// shown, wherever they are stored; in ascending order.
    std::vector<std::int64_t> shown() const;

    /// Says whether no picture needs another.
    bool standAlone() const { return segment_.standsAlone; }

    /// Returns all packets of the segment.
    std::vector<const AVPacket*> all() const;

    bool isFirstOfVideo(std::size_t group) const { return group == 0 && segment_.number == 0; }

    const PacketGroup& groupAt(std::size_t group) const {
        return group < groups() ? segment_.groups[group] : segment_.next;
    }

    /// Returns the key frame's packet of a group; null at the end of the video.
    const AVPacket* keyOf(std::size_t group) const {
        return groupAt(group).empty() ? nullptr : groupAt(group).front().get();
    }

    /// Says whether a packet of a group is shown before its key frame, though stored behind it: it
    /// needs what is before the key frame.
    bool isLeading(std::size_t group, std::size_t packet) const;

    /// Says whether a group begins with such packets.
    bool hasLeading(std::size_t group) const {
        return groupAt(group).size() > 1 && isLeading(group, 1);
    }

    /// Returns how many packets of a group have to be decoded if the next key frame shows the same
    /// view as what is behind them.
    std::size_t needed(std::size_t group) const;

    /// Says whether a group is so short, and all in it so small, that a new scene could neither be
    /// seen in it nor stored. Only where there is a next key frame.
    bool areBriefAndSmall(std::size_t group) const;

    /// Says whether a group's packets from `from` on can hold no scene that the next key frame
    /// shows. Only where there is one.
    bool bringNoScene(std::size_t group, std::size_t from) const;

    /// Says whether nothing happens at the beginning of a group, as far as is known.
    bool beginEvenly(std::size_t group) const;

    /// Returns the timestamp of the last moments before a group: so long before its key frame no
    /// more than a brief scene begins.
    std::int64_t lastMomentsBefore(std::size_t group) const {
        return keyOf(group)->pts - gap_.brief;
    }

    /// Returns two of the pictures of a group that are shown last: that of the most bytes, and the
    /// last of all. Only of groups from which something may be left out.
    std::vector<const AVPacket*> tellingEnd(std::size_t group) const;

    /// Fewer pictures than this are decoded rather than left out: the next key frame would cost as
    /// much.
    static constexpr std::size_t leastLeftOut = 8;

private:
    std::vector<PacketFacts> factsOf(std::size_t group) const;
    std::int64_t lengthOf(std::size_t group) const;
    std::int64_t longestGapIn(std::size_t group) const;

    const Segment& segment_;
    const LongestGap gap_;
    std::size_t count_ = 0;
};

}  // namespace reference_host::media
