#include "reference_host/media/SegmentDecoder.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "reference_host/media/SegmentPackets.h"
#include "reference_host/scenes/CutBar.h"

namespace reference_host::media {
namespace {

/// Whether the rest may be left out is asked again after so many pictures.
constexpr std::size_t picturesBetweenAsking = 4;

/// So many packets of a group are decoded at least where not all are left out, to see how much the
/// scene moves.
constexpr std::size_t leastDecoded = 10;

/// A group of fewer packets is decoded: to leave it out would save little.
constexpr std::size_t leastGroup = 4;

}  // namespace

/// The decoding of one segment.
class SegmentDecoder::Work {
public:
    Work(SegmentDecoder& owner, const Segment& segment, const Tell& tell)
        : owner_(owner),
          packets_(segment, owner.plan_.gap),
          tell_(tell),
          seen_(owner.plan_.threshold, owner.blends_) {}

    SegmentView run() {
        if (packets_.standAlone()) {
            decodeSparsely();
        } else {
            decodeGroups();
        }
        endChain();
        return view();
    }

private:
    bool isStopped() const { return owner_.stop_.stop_requested(); }

    const AVPacket* keyOf(std::size_t group) const { return packets_.keyOf(group); }

    /// Decodes every second picture, and of those between them the ones that have to be seen. Only
    /// where no picture needs another.
    void decodeSparsely() {
        const std::vector<const AVPacket*> packets = packets_.all();
        // Of a picture between two, the next three on either side are to be known.
        constexpr std::size_t behind = 5;
        for (std::size_t even = 0; even < packets.size() + behind && !isStopped(); even += 2) {
            if (even < packets.size()) send(*packets[even]);
            if (even < behind || even - behind >= packets.size()) continue;
            const AVPacket& between = *packets[even - behind];
            if (!seen_.isBetweenPicturesOfOneScene(between.pts)) send(between);
            tellUpTo(even - behind + 1);
        }
        tellUpTo(packets.size());
    }

    void decodeGroups() {
        for (std::size_t i = 0; i < packets_.groups() && !isStopped(); ++i) {
            enter(i);
            const std::size_t needed = packets_.needed(i);
            if (showsOneViewUpToNext(i, needed)) {
                leaveOutFrom(i, 1);
            } else {
                decode(i, needed);
            }
            tellUpTo(packets_.groupAt(i).size());
            told_ = 0;
        }
        if (chain().isBegun() && packets_.hasLeading(packets_.groups())) {
            for (const AvPointer<AVPacket>& packet : packets_.groupAt(packets_.groups()))
                send(*packet);
        }
    }

    /// Says whether a group, of which the key frame has been decoded, surely shows nothing but what
    /// that and the next key frame show.
    bool showsOneViewUpToNext(std::size_t group, std::size_t needed) {
        if (keyOf(group + 1) == nullptr || packets_.groupAt(group).size() < leastGroup)
            return false;
        if (seen_.isNearBlend(keyOf(group)->pts)) return false;
        const bool isQuiet = needed == 1;
        if (!isQuiet && !packets_.areBriefAndSmall(group)) return false;
        const scenes::PictureFeatures* key = seen_.at(keyOf(group)->pts);
        const scenes::PictureFeatures* next = keyView(group + 1);
        if (key == nullptr || next == nullptr) return false;
        const auto passage = scenes::passageBetween(*key, *next, 0, owner_.plan_.threshold);
        return isQuiet ? isOneScene(passage, group, 1) : passage == scenes::Passage::sameView;
    }

    /// Says whether `passage`, from a picture of a group to the next key frame, is one within a
    /// scene, given what the packets of the group from `from` on can hold.
    bool isOneScene(scenes::Passage passage, std::size_t group, std::size_t from) {
        if (passage != scenes::Passage::movedView) return passage == scenes::Passage::sameView;
        return packets_.bringNoScene(group, from) || isBriefMovement(group);
    }

    /// Says whether all pictures that have been decoded in the last moments before the next key
    /// frame show what it shows, but for movement. Then so does what is between them: in so short a
    /// time no scene becomes another of much the same look, nor does a dissolve begin and end. One
    /// that begins with the next group has to be seen with what is before it.
    bool isBriefMovement(std::size_t group) {
        return packets_.beginEvenly(group + 1) &&
               seen_.mayBeOneViewSince(packets_.lastMomentsBefore(group + 1), *keyView(group + 1));
    }

    /// Ends the chain, since nothing happens in a group from a packet on; but for the pictures that
    /// are shown before its key frame, if what they need has been decoded.
    void leaveOutFrom(std::size_t group, std::size_t packet) {
        const PacketGroup& packets = packets_.groupAt(group);
        for (; isContinued_ && packet < packets.size() && packets_.isLeading(group, packet);
             ++packet)
            send(*packets[packet]);
        endChain();
        seen_.goOnAt(keyOf(group + 1)->pts);
    }

    /// Decodes the key frame of a group, or goes on from there where it has been looked at.
    void enter(std::size_t group) {
        isContinued_ = chain().isBegun() && !canTakeOver(group);
        if (isContinued_) return send(*keyOf(group));
        endChain();
        const scenes::PictureFeatures* key = keyView(group);
        // Some decoders give nothing until they are told of the end.
        if (!owner_.ahead_->isBegun()) return send(*keyOf(group));
        std::swap(owner_.chain_, owner_.ahead_);
        if (key != nullptr) addToChain(*keyFrame_, keyOf(group)->pts, *key);
    }

    /// Says whether a chain may end before a group because its key frame has been decoded already
    /// to be looked at. Not before the last one: where a file is cut off, that may lack a part,
    /// which only the pictures before it can make up for.
    bool canTakeOver(std::size_t group) const {
        return aheadAt_ == group && owner_.ahead_->isBegun() && !packets_.hasLeading(group) &&
               keyOf(group + 1) != nullptr;
    }

    /// Decodes a group behind its key frame; from `needed` packets on, the rest is left out if what
    /// comes behind allows.
    void decode(std::size_t group, std::size_t needed) {
        const PacketGroup& packets = packets_.groupAt(group);
        // Without what is before the key frame, the pictures that are shown before it cannot be
        // decoded; nor are they part of this stretch then.
        const bool mayLead = isContinued_ || packets_.isFirstOfVideo(group);
        for (std::size_t i = 1; i < packets.size() && !isStopped(); ++i) {
            if (mayLeaveOutFrom(i, std::max(needed, leastDecoded), packets.size())) {
                const Rest rest = restOf(group, i);
                if (rest == Rest::oneScene) return leaveOutFrom(group, i);
                if (rest == Rest::upToNewScene) return endChain();
                if (rest == Rest::deceptive) return decodeAgain(group);
            }
            if (!mayLead && packets_.isLeading(group, i)) continue;
            send(*packets[i]);
            tellUpTo(i + 1);
        }
    }

    /// Says whether it is time to ask for what comes behind a packet: where the rest becomes quiet,
    /// and some pictures later again, since movement may cease and fades end.
    static bool mayLeaveOutFrom(std::size_t packet, std::size_t quietFrom, std::size_t end) {
        return packet >= quietFrom && (packet - quietFrom) % picturesBetweenAsking == 0 &&
               packet + SegmentPackets::leastLeftOut <= end;
    }

    /// Decodes a whole group from its key frame on.
    void decodeAgain(std::size_t group) {
        endChain();
        isContinued_ = false;
        send(*keyOf(group));
        decode(group, packets_.groupAt(group).size());
    }

    enum class Rest {
        needed,        ///< something may happen in it
        oneScene,      ///< nothing happens
        upToNewScene,  ///< nothing happens, and a new scene begins with the key frame
        deceptive  ///< a scene begins a few pictures before the key frame, and the chain is spoilt
    };

    /// Tells what is to be expected of a group's packets from `from` on, up to the next key frame.
    Rest restOf(std::size_t group, std::size_t from) {
        const scenes::PictureFeatures* next = keyView(group + 1);
        if (seen_.newest() == nullptr || next == nullptr) return Rest::needed;
        if (seen_.isNearBlend(packets_.groupAt(group)[from]->pts)) return Rest::needed;
        const scenes::Passage passage = scenes::passageBetween(
            seen_.last(), *next, seen_.latestMovement(keyOf(group)->pts), owner_.plan_.threshold);
        if (isOneScene(passage, group, from)) return Rest::oneScene;
        // A coder that begins a new group out of turn has seen the new scene begin there.
        if (passage != scenes::Passage::newView || !chain().givesAtOnce() ||
            packets_.hasLeading(group + 1) ||
            owner_.plan_.rhythm.isInTurn(keyOf(group)->pts, keyOf(group + 1)->pts)) {
            return Rest::needed;
        }
        return endLooksLike(*next, group) ? Rest::deceptive : Rest::upToNewScene;
    }

    /// Says whether one of a group's last pictures shows the view of the next key frame rather than
    /// that of the newest picture.
    ///
    /// They are decoded on top of the newest one, as if nothing were between them. So they are not
    /// what they should be; but the coder has either taken them over from pictures like the newest,
    /// or stored something new, in the first picture of a scene at the latest.
    bool endLooksLike(const scenes::PictureFeatures& next, std::size_t group) {
        const std::vector<const AVPacket*> end = packets_.tellingEnd(group);
        return std::any_of(end.begin(), end.end(),
                           [&](const AVPacket* packet) { return looksLike(next, *packet); });
    }

    /// Says whether what comes of a packet on top of the newest picture shows another view rather
    /// than that.
    bool looksLike(const scenes::PictureFeatures& other, const AVPacket& packet) {
        std::optional<scenes::PictureFeatures> glimpse;
        chain().glimpse(packet,
                        [&](const AVFrame& frame, std::int64_t) { glimpse = featuresOf(frame); });
        return glimpse && scenes::differenceOf(*glimpse, other) <
                              scenes::differenceOf(*glimpse, *seen_.newest());
    }

    PictureChain& chain() const { return *owner_.chain_; }

    /// Says whether a copy of an earlier picture is nearly what the packet holds, even for those
    /// that are predicted from it.
    bool mayBeMissing(const AVPacket& packet) const {
        const std::int64_t longest = owner_.plan_.gap.still;
        return longest > 0 && chain().copiesMissing() && (packet.flags & AV_PKT_FLAG_KEY) == 0 &&
               seen_.isInStillness(packet.pts, longest);
    }

    void send(const AVPacket& packet) {
        if (mayBeMissing(packet)) return;
        chain().send(packet,
                     {.leavesOutUnneeded = seen_.isBetweenPicturesOfOneScene(packet.pts),
                      .leavesEdges = !seen_.isLightChanging()},
                     takeFrame_);
    }

    /// Gets the last pictures out of the chain, which is at its end.
    void endChain() {
        const bool isComplete = chain().end(takeFrame_);
        damaged_ += chain().takeDamage();
        seen_.endChain();
        if (!isComplete && !isStopped()) throw NotDivisible{};
    }

    /// Returns the features of a frame; none for a pixel format that cannot be read.
    std::optional<scenes::PictureFeatures> featuresOf(const AVFrame& frame) {
        scenes::PictureSample sample;
        sample.positionTicks = 0;
        if (!owner_.scaler_.scale(frame, sample)) return std::nullopt;
        return scenes::featuresOf(sample);
    }

    void addToChain(const AVFrame& frame, std::int64_t timestamp,
                    const scenes::PictureFeatures& features) {
        if (seen_.add(timestamp, features)) owner_.keeper_.changeView(timestamp);
        if (!isOfNextSegment(timestamp)) owner_.keeper_.offer(frame, timestamp, features.sharpness);
    }

    bool isOfNextSegment(std::int64_t timestamp) const {
        const AVPacket* next = keyOf(packets_.groups());
        return next != nullptr && timestamp >= next->pts;
    }

    /// Returns what the key frame of a group shows, valid until another one is asked for; null
    /// where that cannot be seen. It has been decoded ahead of the chain.
    const scenes::PictureFeatures* keyView(std::size_t group) {
        if (aheadAt_ != group) look(group);
        return keyFeatures_ ? &*keyFeatures_ : nullptr;
    }

    void look(std::size_t group) {
        const PictureChain::Take take = [this](const AVFrame& frame, std::int64_t) {
            keyFeatures_ = featuresOf(frame);
            keyFrame_ = adopt(av_frame_clone(&frame));
        };
        aheadAt_ = group;
        keyFeatures_.reset();
        PictureChain& ahead = *owner_.ahead_;
        ahead.end([](const AVFrame&, std::int64_t) {});
        ahead.takeDamage();
        ahead.send(*keyOf(group), {}, take);
        if (!keyFeatures_) ahead.end(take);
    }

    /// Tells that so many packets of the group are done, unless that has been told.
    void tellUpTo(std::size_t packets) {
        if (packets <= told_) return;
        tell_(static_cast<double>(packets - told_) / static_cast<double>(packets_.count()));
        told_ = packets;
    }

    SegmentView view() {
        SegmentView view;
        view.damaged = damaged_;
        view.frames = static_cast<std::int64_t>(packets_.count());
        addPictures(view);
        view.kept = owner_.keeper_.take();
        const AVPacket* next = keyOf(packets_.groups());
        view.goesOn = next != nullptr && seen_.goesOnAt(next->pts);
        return view;
    }

    /// Adds the pictures that have been seen, and how many were left out around them.
    void addPictures(SegmentView& view) const {
        const std::vector<std::int64_t> shown = packets_.shown();
        auto behind = shown.begin();
        for (const auto& [timestamp, features] : seen_.all()) {
            if (isOfNextSegment(timestamp)) break;
            view.pictures.push_back({timestamp, features});
            scenes::PictureFeatures& picture = view.pictures.back().features;
            picture.goesOn = seen_.goesOnAt(timestamp);
            const auto here = std::lower_bound(behind, shown.end(), timestamp);
            picture.leftOutBefore = static_cast<std::uint32_t>(here - behind);
            behind = std::upper_bound(here, shown.end(), timestamp);
        }
        view.leftOutBehind = static_cast<std::uint32_t>(shown.end() - behind);
    }

    SegmentDecoder& owner_;
    const SegmentPackets packets_;
    const Tell& tell_;
    /// How many packets of the current group have been told of.
    std::size_t told_ = 0;
    SeenPictures seen_;
    /// The current group's key frame follows in the chain on what is before it.
    bool isContinued_ = false;
    /// The group whose key frame was looked at last, and what was seen.
    std::optional<std::size_t> aheadAt_;
    std::optional<scenes::PictureFeatures> keyFeatures_;
    AvPointer<AVFrame> keyFrame_;
    std::int64_t damaged_ = 0;
    const PictureChain::Take takeFrame_ = [this](const AVFrame& frame, std::int64_t timestamp) {
        if (const auto features = featuresOf(frame)) addToChain(frame, timestamp, *features);
    };
};

SegmentDecoder::SegmentDecoder(const AVStream& stream, const Plan& plan, std::stop_token stop)
    : plan_(plan),
      stop_(std::move(stop)),
      stream_(stream),
      blends_(stream.codecpar->codec_id == AV_CODEC_ID_H264 ? SeenPictures::Blends::sparse
                                                            : SeenPictures::Blends::whole),
      keeper_(stream, plan.kept) {
    openDecoders();
}

void SegmentDecoder::openDecoders() {
    chain_ = std::make_unique<PictureChain>(stream_);
    ahead_ = std::make_unique<PictureChain>(stream_);
}

SegmentView SegmentDecoder::decode(const Segment& segment, const Tell& tell) {
    SegmentView view = Work(*this, segment, tell).run();
    // Decoders do not forget everything, and what they make up for missing parts may be from
    // before.
    if (chain_->hasMetDamage() || ahead_->hasMetDamage()) openDecoders();
    return view;
}

}  // namespace reference_host::media
