#include "reference_host/media/SegmentDecoder.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <utility>

#include "reference_host/media/PacketPlan.h"
#include "reference_host/scenes/CutBar.h"
#include "reference_host/scenes/Difference.h"

namespace reference_host::media {
namespace {

/// Fewer pictures are decoded rather than looked past: the next key frame would cost as much.
constexpr std::size_t leastLeftOut = 8;

/// So many packets of a group are decoded at least where not all are left out, to see how much the
/// scene moves; and over so many pictures its movement is measured.
constexpr std::size_t leastDecoded = 10;
constexpr int picturesOfPace = 4;

/// How fast the usual change from one picture to the next follows that of the newest, and how many
/// times as much the newest may count: a cut or flash is not usual.
constexpr double paceWeight = 0.25;
constexpr double largestTimesPace = 3;
constexpr double largestBesidePace = 3;

/// Where the light is steady, one of two neighbours has up to so many times the other's contrast.
constexpr float steadyLight = 1.04F;

double differenceOf(const scenes::PictureFeatures& before, const scenes::PictureFeatures& after) {
    return scenes::differenceBetween(before.thumbnail, after.thumbnail).overall;
}

std::vector<PacketFacts> factsOf(const PacketGroup& group) {
    std::vector<PacketFacts> facts;
    facts.reserve(group.size());
    for (const AvPointer<AVPacket>& packet : group)
        facts.push_back({packet->pts, packet->size});
    return facts;
}

}  // namespace

/// The decoding of one segment.
class SegmentDecoder::Work {
public:
    Work(SegmentDecoder& owner, const Segment& segment, const Tell& tell)
        : owner_(owner), segment_(segment), tell_(tell) {
        for (const PacketGroup& group : segment.groups)
            packets_ += group.size();
    }

    SegmentView run() {
        for (std::size_t i = 0; i < segment_.groups.size() && !isStopped(); ++i) {
            enter(i);
            const std::size_t needed = packetsNeeded(i);
            if (showsOneViewUpToNext(i, needed)) {
                leaveOutFrom(i, 1);
            } else {
                decode(i, needed);
            }
            tellUpTo(segment_.groups[i].size());
            told_ = 0;
        }
        if (chain().isBegun() && hasLeadingPictures(segment_.groups.size())) {
            for (const AvPointer<AVPacket>& packet : segment_.next)
                send(*packet);
        }
        endChain();
        return view();
    }

private:
    using Pictures = std::map<std::int64_t, scenes::PictureFeatures>;

    bool isStopped() const { return owner_.stop_.stop_requested(); }

    const PacketGroup& groupAt(std::size_t group) const {
        return group < segment_.groups.size() ? segment_.groups[group] : segment_.next;
    }

    /// Null at the end of the video.
    const AVPacket* keyOf(std::size_t group) const {
        return groupAt(group).empty() ? nullptr : groupAt(group).front().get();
    }

    std::int64_t lengthOf(std::size_t group) const {
        return keyOf(group + 1)->pts - keyOf(group)->pts;
    }

    /// Returns how many packets of a group have to be decoded if the next key frame shows the same
    /// view as what is behind them.
    std::size_t packetsNeeded(std::size_t index) const {
        const PacketGroup& group = groupAt(index);
        const AVPacket* nextKey = keyOf(index + 1);
        if (nextKey == nullptr) return group.size();
        std::size_t needed = packetsBeforeQuiet(factsOf(group));
        const std::int64_t latest = nextKey->pts - longestGapIn(index);
        while (needed < group.size() && group[needed - 1]->pts < latest)
            ++needed;
        return needed + leastLeftOut <= group.size() ? needed : group.size();
    }

    std::int64_t longestGapIn(std::size_t index) const {
        const LongestGap& gap = owner_.plan_.gap;
        const double length = static_cast<double>(lengthOf(index));
        return std::clamp(static_cast<std::int64_t>(length * gap.part), gap.always, gap.most);
    }

    /// Says whether a group, of which the key frame has been decoded, surely shows nothing but what
    /// that and the next key frame show.
    bool showsOneViewUpToNext(std::size_t index, std::size_t needed) {
        if (keyOf(index + 1) == nullptr || groupAt(index).size() == 1) return false;
        const bool isQuiet = needed == 1;
        if (!isQuiet && !isBriefAndSmall(index)) return false;
        const auto key = pictures_.find(keyOf(index)->pts);
        const scenes::PictureFeatures* next = keyView(index + 1);
        if (key == pictures_.end() || next == nullptr) return false;
        const auto passage = scenes::passageBetween(key->second, *next, 0, owner_.plan_.threshold);
        return isQuiet ? isOneScene(passage, index, 1) : passage == scenes::Passage::sameView;
    }

    /// Says whether a group is so short, and all in it so small, that a new scene could neither be
    /// seen in it nor stored.
    bool isBriefAndSmall(std::size_t index) const {
        return lengthOf(index) <= owner_.plan_.gap.brief && packetsBringNoScene(index, 1);
    }

    bool packetsBringNoScene(std::size_t index, std::size_t from) const {
        const std::vector<PacketFacts> facts = factsOf(groupAt(index));
        return bringNoScene(std::span(facts).subspan(from), keyOf(index + 1)->size);
    }

    /// Says whether `passage` is one within a scene, given what the packets of a group from `from`
    /// on can hold.
    bool isOneScene(scenes::Passage passage, std::size_t index, std::size_t from) const {
        if (passage != scenes::Passage::movedView) return passage == scenes::Passage::sameView;
        return packetsBringNoScene(index, from);
    }

    /// Ends the chain, since nothing happens in a group from a packet on; but for the pictures that
    /// are shown before its key frame, if what they need has been decoded.
    void leaveOutFrom(std::size_t index, std::size_t packet) {
        const PacketGroup& group = groupAt(index);
        for (; isContinued_ && packet < group.size() && isLeading(group, packet); ++packet)
            send(*group[packet]);
        endChain();
        goingOn_.insert(keyOf(index + 1)->pts);
    }

    static bool isLeading(const PacketGroup& group, std::size_t packet) {
        return group[packet]->pts < group.front()->pts;
    }

    /// Says whether a new scene may begin with pictures that are stored behind the key frame of a
    /// group but shown before it; they need what is before the key frame.
    bool hasLeadingPictures(std::size_t index) const {
        const PacketGroup& group = groupAt(index);
        return group.size() > 1 && isLeading(group, 1);
    }

    /// Decodes the key frame of a group, or goes on from there where it has been looked at.
    void enter(std::size_t index) {
        isContinued_ = chain().isBegun() && !canTakeOver(index);
        if (isContinued_) return send(*keyOf(index));
        endChain();
        const scenes::PictureFeatures* key = keyView(index);
        // Some decoders give nothing until they are told of the end.
        if (!owner_.ahead_->isBegun()) return send(*keyOf(index));
        std::swap(owner_.chain_, owner_.ahead_);
        if (key != nullptr) addToChain(*keyFrame_, keyOf(index)->pts, *key);
    }

    /// Says whether a chain may end before a group because its key frame has been decoded already
    /// to be looked at. Not before the last one: where a file is cut off, that may lack a part,
    /// which only the pictures before it can make up for.
    bool canTakeOver(std::size_t index) const {
        return aheadAt_ == index && owner_.ahead_->isBegun() && !hasLeadingPictures(index) &&
               keyOf(index + 1) != nullptr;
    }

    /// Decodes a group behind its key frame; from `needed` packets on, the rest is left out if what
    /// comes behind allows.
    void decode(std::size_t index, std::size_t needed) {
        const PacketGroup& group = groupAt(index);
        // Without what is before the key frame, the pictures that are shown before it cannot be
        // decoded; nor are they part of this stretch then.
        const bool isFirst = segment_.number + static_cast<std::int64_t>(index) == 0;
        for (std::size_t i = 1; i < group.size() && !isStopped(); ++i) {
            if (mayLeaveOutFrom(i, std::max(needed, leastDecoded), group.size())) {
                const Rest rest = restOf(index, i);
                if (rest == Rest::oneScene) return leaveOutFrom(index, i);
                if (rest == Rest::upToNewScene) return endChain();
                if (rest == Rest::deceptive) return decodeAgain(index);
            }
            if (!isContinued_ && !isFirst && isLeading(group, i)) continue;
            send(*group[i]);
            tellUpTo(i + 1);
        }
    }

    /// Says whether it is time to ask for what comes behind a packet: where the rest becomes quiet,
    /// and some pictures later again, since movement may cease and fades end.
    static bool mayLeaveOutFrom(std::size_t packet, std::size_t quietFrom, std::size_t end) {
        return packet >= quietFrom && (packet - quietFrom) % leastLeftOut == 0 &&
               packet + leastLeftOut <= end;
    }

    /// Decodes a whole group from its key frame on.
    void decodeAgain(std::size_t index) {
        endChain();
        isContinued_ = false;
        send(*keyOf(index));
        decode(index, groupAt(index).size());
    }

    enum class Rest {
        needed,        ///< something may happen in it
        oneScene,      ///< nothing happens
        upToNewScene,  ///< nothing happens, and a new scene begins with the key frame
        deceptive  ///< a scene begins a few pictures before the key frame, and the chain is spoilt
    };

    /// Tells what is to be expected of a group's packets from `from` on, up to the next key frame.
    Rest restOf(std::size_t index, std::size_t from) {
        const scenes::PictureFeatures* next = keyView(index + 1);
        if (newest_ == pictures_.end() || next == nullptr) return Rest::needed;
        const scenes::Passage passage =
            scenes::passageBetween(std::prev(pictures_.end())->second, *next, latestMovement(index),
                                   owner_.plan_.threshold);
        if (isOneScene(passage, index, from)) return Rest::oneScene;
        // A coder that begins a new group out of turn has seen the new scene begin there.
        if (passage != scenes::Passage::newView || !chain().givesAtOnce() ||
            hasLeadingPictures(index + 1) ||
            owner_.plan_.rhythm.isInTurn(keyOf(index)->pts, keyOf(index + 1)->pts)) {
            return Rest::needed;
        }
        return endLooksLike(*next, index) ? Rest::deceptive : Rest::upToNewScene;
    }

    /// Returns how much the last pictures of a group that have been decoded differ.
    double latestMovement(std::size_t index) const {
        const auto latest = std::prev(pictures_.end());
        const auto first = pictures_.lower_bound(keyOf(index)->pts);
        auto earlier = latest;
        for (int i = 0; i < picturesOfPace && first != pictures_.end() && earlier != first; ++i)
            --earlier;
        return differenceOf(earlier->second, latest->second);
    }

    /// Says whether one of a group's last pictures shows the view of the next key frame rather than
    /// that of the newest picture.
    ///
    /// Two are decoded on top of the newest one, as if nothing were between them: that of the most
    /// bytes and the last. So they are not what they should be; but the coder has either taken them
    /// over from pictures like the newest, or stored something new, in the first picture of a scene
    /// at the latest.
    bool endLooksLike(const scenes::PictureFeatures& next, std::size_t index) {
        std::vector<const AVPacket*> last = lastShown(groupAt(index));
        std::iter_swap(last.begin(), std::max_element(last.begin(), last.end() - 1, hasFewerBytes));
        return looksLike(next, *last.front()) || looksLike(next, *last.back());
    }

    static bool hasFewerBytes(const AVPacket* a, const AVPacket* b) { return a->size < b->size; }

    /// Returns the packets of the pictures of a group that are shown last, in that order.
    static std::vector<const AVPacket*> lastShown(const PacketGroup& group) {
        std::vector<const AVPacket*> packets;
        for (const AvPointer<AVPacket>& packet : group)
            packets.push_back(packet.get());
        std::sort(packets.begin(), packets.end(),
                  [](const AVPacket* a, const AVPacket* b) { return a->pts < b->pts; });
        packets.erase(packets.begin(), packets.end() - leastLeftOut);
        return packets;
    }

    /// Says whether what comes of a packet on top of the newest picture shows another view rather
    /// than that.
    bool looksLike(const scenes::PictureFeatures& other, const AVPacket& packet) {
        std::optional<scenes::PictureFeatures> seen;
        chain().glimpse(packet,
                        [&](const AVFrame& frame, std::int64_t) { seen = featuresOf(frame); });
        return seen && differenceOf(*seen, other) < differenceOf(*seen, newest_->second);
    }

    PictureChain& chain() const { return *owner_.chain_; }

    void send(const AVPacket& packet) {
        chain().send(packet,
                     {.leavesOutUnneeded = isBetweenPicturesOfOneScene(packet.pts),
                      .leavesEdges = !isLightChanging()},
                     takeFrame_);
    }

    /// Gets the last pictures out of the chain, which is at its end.
    void endChain() {
        const bool isComplete = chain().end(takeFrame_);
        damaged_ += chain().takeDamage();
        newest_ = pictures_.end();
        if (!isComplete && !isStopped()) throw NotDivisible{};
    }

    /// Says whether the scene becomes darker or brighter, as far as is known. Coders then predict
    /// pictures by scaling others, which makes every small error grow: of blocks whose edges are
    /// not smoothed nothing recognisable may be left.
    bool isLightChanging() const {
        if (newest_ == pictures_.end() || scenes::isPlain(newest_->second)) return true;
        if (newest_ == pictures_.begin()) return false;
        const float contrast = newest_->second.contrast;
        const float before = std::prev(newest_)->second.contrast;
        return std::max(contrast, before) > steadyLight * std::min(contrast, before);
    }

    bool isBetweenPicturesOfOneScene(std::int64_t timestamp) const {
        const auto after = pictures_.upper_bound(timestamp);
        if (after == pictures_.begin() || after == pictures_.end()) return false;
        const auto before = std::prev(after);
        return scenes::areNeighboursOfOneScene(before->second, after->second, pace_,
                                               owner_.plan_.threshold) &&
               !(owner_.seesBlendsWhole_ && isInBlend(before, after));
    }

    bool isInBlend(Pictures::const_iterator before, Pictures::const_iterator after) const {
        const auto next = std::next(after);
        return (next != pictures_.end() &&
                scenes::mayBlend(before->second, after->second, next->second)) ||
               (before != pictures_.begin() &&
                scenes::mayBlend(std::prev(before)->second, before->second, after->second));
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
        newest_ = pictures_.insert_or_assign(timestamp, features).first;
        if (newest_ != pictures_.begin()) followPace();
        keep(frame, timestamp, features);
    }

    void keep(const AVFrame& frame, std::int64_t timestamp,
              const scenes::PictureFeatures& features) {
        const AVPacket* next = keyOf(segment_.groups.size());
        if (next != nullptr && timestamp >= next->pts) return;
        owner_.keeper_.offer(frame, timestamp, features.sharpness);
    }

    void followPace() {
        const scenes::PictureFeatures& before = std::prev(newest_)->second;
        const double change = differenceOf(before, newest_->second);
        const double threshold = owner_.plan_.threshold;
        const double least = scenes::leastCut(before.contrast, newest_->second.contrast, threshold);
        if (change >= least + threshold * pace_) owner_.keeper_.changeView(newest_->first);
        const double counted = std::min(change, largestTimesPace * pace_ + largestBesidePace);
        pace_ += paceWeight * (counted - pace_);
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
        tell_(static_cast<double>(packets - told_) / static_cast<double>(packets_));
        told_ = packets;
    }

    SegmentView view() {
        SegmentView view;
        view.damaged = damaged_;
        view.frames = static_cast<std::int64_t>(packets_);
        const AVPacket* next = keyOf(segment_.groups.size());
        for (const auto& [timestamp, features] : pictures_) {
            if (next != nullptr && timestamp >= next->pts) break;
            view.pictures.push_back({timestamp, features});
            view.pictures.back().features.goesOn = goingOn_.contains(timestamp);
        }
        view.kept = owner_.keeper_.take();
        view.goesOn = next != nullptr && goingOn_.contains(next->pts);
        return view;
    }

    SegmentDecoder& owner_;
    const Segment& segment_;
    const Tell& tell_;
    std::size_t packets_ = 0;
    /// How many packets of the current group have been told of.
    std::size_t told_ = 0;
    Pictures pictures_;
    /// The current group's key frame follows in the chain on what is before it.
    bool isContinued_ = false;
    /// The group whose key frame was looked at last, and what was seen.
    std::optional<std::size_t> aheadAt_;
    std::optional<scenes::PictureFeatures> keyFeatures_;
    AvPointer<AVFrame> keyFrame_;
    /// The picture that the chain has given last.
    Pictures::iterator newest_ = pictures_.end();
    /// How much pictures usually change from one to the next.
    double pace_ = 0;
    /// When key frames are shown that surely go on with the scene before them.
    std::set<std::int64_t> goingOn_;
    std::int64_t damaged_ = 0;
    const PictureChain::Take takeFrame_ = [this](const AVFrame& frame, std::int64_t timestamp) {
        if (const auto features = featuresOf(frame)) addToChain(frame, timestamp, *features);
    };
};

SegmentDecoder::SegmentDecoder(const AVStream& stream, const Plan& plan, std::stop_token stop)
    : plan_(plan),
      stop_(std::move(stop)),
      stream_(stream),
      seesBlendsWhole_(stream.codecpar->codec_id != AV_CODEC_ID_H264),
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
