#include "reference_host/media/SegmentReader.h"

extern "C" {
#include <libavcodec/codec_desc.h>
}

#include <algorithm>
#include <utility>

namespace reference_host::media {
namespace {

/// A segment has so many packets at least: two seconds, so that little is decoded twice for being
/// at its border.
constexpr std::size_t leastPackets = 90;

/// How many pictures that stand alone make a group: a fourth of a second at 30 a second.
constexpr std::size_t intraGroupPackets = 8;

/// Beyond these, segments take too much memory.
constexpr std::size_t mostPackets = 1500;
constexpr std::int64_t mostBytes = std::int64_t{48} << 20;

bool isIntraOnly(AVCodecID codec) {
    const AVCodecDescriptor* description = avcodec_descriptor_get(codec);
    return description != nullptr && (description->props & AV_CODEC_PROP_INTRA_ONLY) != 0;
}

bool isKey(const AVPacket& packet) {
    return (packet.flags & AV_PKT_FLAG_KEY) != 0;
}

AvPointer<AVPacket> shared(const AVPacket& packet) {
    return adopt(av_packet_clone(&packet));
}

std::int64_t bytesOf(const PacketGroup& group) {
    std::int64_t bytes = 0;
    for (const AvPointer<AVPacket>& packet : group)
        bytes += packet->size;
    return bytes;
}

void copyParameters(const AVPacket& from, AVPacket& to) {
    std::size_t size = 0;
    const std::uint8_t* data = av_packet_get_side_data(&from, AV_PKT_DATA_NEW_EXTRADATA, &size);
    std::uint8_t* copy = av_packet_new_side_data(&to, AV_PKT_DATA_NEW_EXTRADATA, size);
    if (copy == nullptr) throw std::bad_alloc();
    std::copy_n(data, size, copy);
}

bool hasParameters(const AVPacket& packet) {
    return av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, nullptr) != nullptr;
}

/// Returns the key frame that begins `group`, and what is decoded behind it but shown before it.
PacketGroup beginningOf(const PacketGroup& group) {
    PacketGroup beginning;
    for (const AvPointer<AVPacket>& packet : group) {
        if (!beginning.empty() && packet->pts >= group.front()->pts) break;
        beginning.push_back(shared(*packet));
    }
    return beginning;
}

}  // namespace

SegmentReader::SegmentReader(Container& container)
    : container_(container),
      isIntraOnly_(isIntraOnly(container.video().codecpar->codec_id)),
      sets_(container.video()) {}

std::optional<Segment> SegmentReader::next() {
    if (pending_.empty()) pending_ = readGroup();
    if (pending_.empty()) return std::nullopt;
    Segment segment{segments_++, {}, {}, isIntraOnly_};
    std::size_t packets = 0;
    std::int64_t bytes = 0;
    while (!pending_.empty() && packets < leastPackets && bytes <= mostBytes) {
        packets += pending_.size();
        bytes += bytesOf(pending_);
        segment.groups.push_back(std::exchange(pending_, {}));
        pending_ = readGroup();
    }
    if (!pending_.empty()) segment.next = beginningOf(pending_);
    return segment;
}

PacketGroup SegmentReader::readGroup() {
    PacketGroup group;
    std::int64_t bytes = 0;
    if (ahead_) group.push_back(std::move(ahead_));
    while (AvPointer<AVPacket> packet = read()) {
        if (!group.empty() && beginsGroup(*packet, group)) {
            ahead_ = std::move(packet);
            break;
        }
        bytes += packet->size;
        if (group.size() == mostPackets || bytes > mostBytes) throw SegmentTooLong{};
        group.push_back(std::move(packet));
    }
    return group;
}

bool SegmentReader::beginsGroup(const AVPacket& packet, const PacketGroup& group) const {
    return isKey(packet) && (!isIntraOnly_ || group.size() >= intraGroupPackets);
}

AvPointer<AVPacket> SegmentReader::read() {
    AvPointer<AVPacket> packet = adopt(av_packet_alloc());
    if (!container_.read(*packet)) return nullptr;
    // What refers to the file's own memory would not outlive the next reading.
    if (av_packet_make_refcounted(packet.get()) < 0) throw std::bad_alloc();
    if (isKey(*packet) && !sets_.areKnownAt(*packet)) throw NotDivisible{};
    if (hasParameters(*packet)) {
        parameters_ = shared(*packet);
    } else if (parameters_ && isKey(*packet)) {
        copyParameters(*parameters_, *packet);
    }
    return packet;
}

}  // namespace reference_host::media
