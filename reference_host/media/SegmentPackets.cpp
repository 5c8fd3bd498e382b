#include "reference_host/media/SegmentPackets.h"

#include <algorithm>
#include <span>

namespace reference_host::media {

SegmentPackets::SegmentPackets(const Segment& segment, const LongestGap& gap)
    : segment_(segment), gap_(gap) {
    for (const PacketGroup& group : segment.groups)
        count_ += group.size();
}

std::vector<const AVPacket*> SegmentPackets::all() const {
    std::vector<const AVPacket*> packets;
    for (const PacketGroup& group : segment_.groups) {
        for (const AvPointer<AVPacket>& packet : group)
            packets.push_back(packet.get());
    }
    return packets;
}

std::vector<std::int64_t> SegmentPackets::shown() const {
    const AVPacket* next = keyOf(groups());
    std::vector<std::int64_t> timestamps;
    for (std::size_t group = 0; group <= groups(); ++group) {
        for (const AvPointer<AVPacket>& packet : groupAt(group)) {
            const bool isBefore = !isFirstOfVideo(0) && packet->pts < keyOf(0)->pts;
            const bool isBehind = next != nullptr && packet->pts >= next->pts;
            const bool isShown = (packet->flags & AV_PKT_FLAG_DISCARD) == 0;
            if (isShown && !isBefore && !isBehind) timestamps.push_back(packet->pts);
        }
    }
    std::sort(timestamps.begin(), timestamps.end());
    return timestamps;
}

bool SegmentPackets::isLeading(std::size_t group, std::size_t packet) const {
    return groupAt(group)[packet]->pts < groupAt(group).front()->pts;
}

std::size_t SegmentPackets::needed(std::size_t group) const {
    const PacketGroup& packets = groupAt(group);
    const AVPacket* nextKey = keyOf(group + 1);
    if (nextKey == nullptr) return packets.size();
    std::size_t count = packetsBeforeQuiet(factsOf(group));
    const std::int64_t latest = nextKey->pts - longestGapIn(group);
    while (count < packets.size() && packets[count - 1]->pts < latest)
        ++count;
    return count + leastLeftOut <= packets.size() ? count : packets.size();
}

bool SegmentPackets::areBriefAndSmall(std::size_t group) const {
    return lengthOf(group) <= gap_.brief && bringNoScene(group, 1);
}

bool SegmentPackets::bringNoScene(std::size_t group, std::size_t from) const {
    const std::vector<PacketFacts> facts = factsOf(group);
    return media::bringNoScene(std::span(facts).subspan(from), keyOf(group + 1)->size);
}

bool SegmentPackets::beginEvenly(std::size_t group) const {
    return beginsEvenly(factsOf(group));
}

std::vector<const AVPacket*> SegmentPackets::tellingEnd(std::size_t group) const {
    std::vector<const AVPacket*> shown;
    for (const AvPointer<AVPacket>& packet : groupAt(group))
        shown.push_back(packet.get());
    std::sort(shown.begin(), shown.end(),
              [](const AVPacket* a, const AVPacket* b) { return a->pts < b->pts; });
    const auto largest =
        std::max_element(shown.end() - leastLeftOut, shown.end() - 1,
                         [](const AVPacket* a, const AVPacket* b) { return a->size < b->size; });
    return {*largest, shown.back()};
}

std::vector<PacketFacts> SegmentPackets::factsOf(std::size_t group) const {
    std::vector<PacketFacts> facts;
    facts.reserve(groupAt(group).size());
    for (const AvPointer<AVPacket>& packet : groupAt(group))
        facts.push_back({packet->pts, packet->size});
    return facts;
}

std::int64_t SegmentPackets::lengthOf(std::size_t group) const {
    return keyOf(group + 1)->pts - keyOf(group)->pts;
}

std::int64_t SegmentPackets::longestGapIn(std::size_t group) const {
    const double length = static_cast<double>(lengthOf(group));
    return std::clamp(static_cast<std::int64_t>(length * gap_.part), gap_.always, gap_.most);
}

}  // namespace reference_host::media
