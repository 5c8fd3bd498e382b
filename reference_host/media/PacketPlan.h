#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace reference_host::media {

/// What a packet tells before it is decoded.
struct PacketFacts {
    /// When its picture is shown, in the unit of its stream.
    std::int64_t timestamp = 0;
    std::int64_t bytes = 0;
};

/// Returns how many packets of a group of pictures, in the order in which they are decoded and from
/// its key frame on, have to be decoded before the rest can be left out, as far as the packets'
/// sizes can tell; `group.size()` where they tell of changes up to the end.
///
/// Whatever a group shows that is new has to be stored in it: a cut or flash in one packet, a
/// dissolve or fade in many. Where the packets are of an even size, nothing new comes that was not
/// coming all the time. That says nothing about slow movement, and little about a dissolve in deep
/// noise, so that what is before and after the rest has to be compared as well.
std::size_t packetsBeforeQuiet(std::span<const PacketFacts> group);

/// Says whether the first pictures of a group behind its key frame are of an even size: neither
/// does anything new begin with them, nor does something begin to end. False for a group of which
/// too few packets are known.
bool beginsEvenly(std::span<const PacketFacts> group);

/// Says whether every packet of `rest` is so small that none can have brought the scene that a key
/// frame of `keyBytes` shows.
bool bringNoScene(std::span<const PacketFacts> rest, std::int64_t keyBytes);

}  // namespace reference_host::media
