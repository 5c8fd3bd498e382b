#include "reference_host/media/SegmentDecoder.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "reference_host/media/Messages.h"
#include "reference_host/media/PacketPlan.h"
#include "reference_host/scenes/CutBar.h"
#include "reference_host/scenes/Difference.h"

namespace reference_host::media {
namespace {

/// Fewer pictures are decoded rather than looked past: the next key frame would cost as much.
constexpr std::size_t leastLeftOut = 8;

/// After so many key frames that show another view than what is before the quiet packets, a segment
/// is one in which much moves.
constexpr int mostVainLooks = 2;

/// So many packets of a group are decoded at least where not all are left out, to see how much the
/// scene moves; and over so many pictures its movement is measured.
constexpr std::size_t leastDecoded = 10;
constexpr std::ptrdiff_t picturesOfPace = 4;

/// How fast the usual change from one picture to the next follows that of the newest, and how many
/// times as much the newest may count: a cut or flash is not usual.
constexpr double paceWeight = 0.25;
constexpr double largestTimesPace = 3;
constexpr double largestBesidePace = 3;

/// From so many pictures on it is known whether the light changes; it does where the contrast of
/// two neighbours differs by this part.
constexpr int leastForLight = 2;
constexpr double steadyLightPart = 0.04;

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

bool isShown(const AVPacket& packet) {
    return (packet.flags & AV_PKT_FLAG_DISCARD) == 0;
}

}  // namespace

/// The decoding of one segment.
class SegmentDecoder::Work {
public:
    Work(SegmentDecoder& owner, const Segment& segment, const Tell& tell)
        : owner_(owner), segment_(segment), tell_(tell), keyViews_(segment.groups.size() + 1) {
        for (const PacketGroup& group : segment.groups)
            packets_ += group.size();
    }

    SegmentView run() {
        const std::int64_t damagedBefore = damagedSoFar();
        for (std::size_t i = 0; i < segment_.groups.size(); ++i) {
            if (!leaveOutWhole(i)) decode(i, packetsNeeded(i));
            keyViews_[i].frame.reset();
            tellUpTo(segment_.groups[i].size());
            told_ = 0;
        }
        // Behind the key frame that comes next there may be pictures that are shown before it.
        if (isInChain_ && segment_.next.size() > 1) {
            for (const AvPointer<AVPacket>& packet : segment_.next)
                send(*packet);
        }
        endChain();
        return view(damagedSoFar() - damagedBefore);
    }

private:
    using Pictures = std::map<std::int64_t, scenes::PictureFeatures>;

    struct KeyView {
        bool isKnown = false;
        std::optional<scenes::PictureFeatures> features;
        AvPointer<AVFrame> frame;
    };

    const AVPacket* keyOf(std::size_t group) const {
        if (group < segment_.groups.size()) return segment_.groups[group].front().get();
        return segment_.next.empty() ? nullptr : segment_.next.front().get();
    }

    /// Returns how many packets of a group have to be decoded if the next key frame shows the same
    /// view as what is behind them.
    std::size_t packetsNeeded(std::size_t index) const {
        const PacketGroup& group = segment_.groups[index];
        const AVPacket* nextKey = keyOf(index + 1);
        if (nextKey == nullptr || vainLooks_ >= mostVainLooks) return group.size();
        std::size_t needed = packetsBeforeQuiet(factsOf(group));
        const std::int64_t latest = nextKey->pts - longestGapIn(index);
        while (needed < group.size() && group[needed - 1]->pts < latest)
            ++needed;
        return needed + leastLeftOut <= group.size() ? needed : group.size();
    }

    std::int64_t longestGapIn(std::size_t index) const {
        const LongestGap& gap = owner_.plan_.gap;
        const double length = static_cast<double>(keyOf(index + 1)->pts - keyOf(index)->pts);
        return std::clamp(static_cast<std::int64_t>(length * gap.part), gap.always, gap.most);
    }

    /// Says whether a group and the next key frame surely show one scene.
    bool showOneScene(std::size_t index) {
        const scenes::PictureFeatures* key = keyView(index);
        const scenes::PictureFeatures* next = keyView(index + 1);
        if (key == nullptr || next == nullptr) return false;
        return isOneScene(scenes::passageBetween(*key, *next, 0, owner_.plan_.threshold), index, 1);
    }

    /// Says whether `passage` is one within a scene, given what the packets of a group from `from`
    /// on can hold.
    bool isOneScene(scenes::Passage passage, std::size_t index, std::size_t from) const {
        if (passage != scenes::Passage::movedView) return passage == scenes::Passage::sameView;
        const std::vector<PacketFacts> facts = factsOf(segment_.groups[index]);
        return bringNoScene(std::span(facts).subspan(from), keyOf(index + 1)->size);
    }

    /// Leaves out all of a group but its key frame, where that will do.
    bool leaveOutWhole(std::size_t index) {
        const bool isQuiet = packetsNeeded(index) == 1 && segment_.groups[index].size() > 1;
        if (!isQuiet || !showOneScene(index)) return false;
        endChain();
        goingOn_.insert(keyOf(index + 1)->pts);
        const scenes::PictureFeatures& key = *keyView(index);
        pictures_.insert_or_assign(keyOf(index)->pts, key);
        keep(*keyViews_[index].frame, keyOf(index)->pts, key);
        return true;
    }

    /// Decodes a group; from `needed` packets on, the rest is left out if what comes behind allows.
    void decode(std::size_t index, std::size_t needed) {
        const PacketGroup& group = segment_.groups[index];
        // Without what is before the key frame, the pictures that are shown before it cannot be
        // decoded; nor are they part of this stretch then.
        const bool isEntered =
            !isInChain_ && segment_.number + static_cast<std::int64_t>(index) > 0;
        for (std::size_t i = 0; i < group.size() && !owner_.stop_.stop_requested(); ++i) {
            if (i == std::max(needed, leastDecoded) && i < group.size()) {
                const Rest rest = restOf(index, i);
                if (rest != Rest::needed) endChain();
                if (rest == Rest::empty) return;
                if (rest == Rest::deceptive) return decode(index, group.size());
            }
            if (isEntered && group[i]->pts < group.front()->pts) continue;
            send(*group[i]);
            tellUpTo(i + 1);
        }
    }

    enum class Rest {
        needed,    ///< something may happen in it
        empty,     ///< nothing does
        deceptive  ///< the scene begins a few pictures before the key frame; the chain is spoilt
    };

    /// Tells what is to be expected of the pictures between the newest one, which is of a group,
    /// and the next key frame.
    Rest restOf(std::size_t index, std::size_t from) {
        const scenes::PictureFeatures* next = keyView(index + 1);
        if (newest_ == pictures_.end() || next == nullptr) return Rest::needed;
        const scenes::Passage passage = scenes::passageBetween(
            newest_->second, *next, movementUpToNewest(), owner_.plan_.threshold);
        if (isOneScene(passage, index, from)) {
            goingOn_.insert(keyOf(index + 1)->pts);
            return Rest::empty;
        }
        // A coder that begins a new group out of turn has seen the new scene begin there.
        if (passage != scenes::Passage::newView || !owner_.chain_->givesNewest() ||
            hasLeadingPictures(index + 1) ||
            owner_.plan_.rhythm.isInTurn(keyOf(index)->pts, keyOf(index + 1)->pts)) {
            ++vainLooks_;
            return Rest::needed;
        }
        return lastLooksLike(*next, index) ? Rest::deceptive : Rest::empty;
    }

    /// Says whether pictures are stored behind the key frame of a group but shown before it: a new
    /// scene may begin with them, and they need what is before the key frame.
    bool hasLeadingPictures(std::size_t index) const {
        const PacketGroup& group =
            index < segment_.groups.size() ? segment_.groups[index] : segment_.next;
        return group.size() > 1 && group[1]->pts < group[0]->pts;
    }

    /// Says whether a group's last picture shows the view of the next key frame rather than that of
    /// the newest picture.
    ///
    /// It is decoded on top of the newest one, as if nothing were between them. So it is not what
    /// it should be; but the coder has either taken it over from pictures like the newest, or
    /// stored it as something new.
    bool lastLooksLike(const scenes::PictureFeatures& next, std::size_t index) {
        const PacketGroup& group = segment_.groups[index];
        const auto last =
            std::max_element(group.begin(), group.end(),
                             [](const auto& a, const auto& b) { return a->pts < b->pts; });
        const scenes::PictureFeatures before = newest_->second;
        const std::optional<scenes::PictureFeatures> seen = glimpse(**last);
        return seen && differenceOf(*seen, next) < differenceOf(*seen, before);
    }

    /// Returns what comes of a packet without those before it; none for nothing at all.
    std::optional<scenes::PictureFeatures> glimpse(const AVPacket& packet) {
        // What is missing is no error of the file.
        const FirstError aside;
        Decoder& chain = *owner_.chain_;
        const std::int64_t damagedBefore = chain.damaged();
        std::optional<scenes::PictureFeatures> seen;
        if (chain.givesNewest()) chain.leaveOutUnneeded(false);
        chain.send(&packet);
        if (const AVFrame* frame = chain.givesNewest() ? chain.newest() : nullptr) {
            seen = featuresOf(*frame);
        }
        receive();
        forgiven_ += chain.damaged() - damagedBefore;
        isSpoilt_ = true;
        return seen;
    }

    double movementUpToNewest() {
        const auto behindIt = std::distance(pictures_.begin(), newest_);
        const auto earlier = std::prev(newest_, std::min(picturesOfPace, behindIt));
        return differenceOf(earlier->second, newest_->second);
    }

    void send(const AVPacket& packet) {
        isInChain_ = true;
        Decoder& chain = *owner_.chain_;
        if (chain.givesNewest()) chain.leaveOutUnneeded(isBetweenPicturesOfOneScene(packet.pts));
        chain.smoothEdges(isLightChanging());
        chain.send(&packet);
        if (const AVFrame* frame = chain.givesNewest() ? chain.newest() : nullptr) {
            if (isShown(packet)) {
                take(*frame, packet.pts);
                ++awaited_;
            }
        }
        receive();
    }

    void receive() {
        while (const AVFrame* frame = owner_.chain_->receive()) {
            --awaited_;
            if (!owner_.chain_->givesNewest()) take(*frame, frame->best_effort_timestamp);
        }
    }

    /// Gets the last frames out of the chain, which is at its end.
    void endChain() {
        if (!std::exchange(isInChain_, false)) return;
        Decoder& chain = *owner_.chain_;
        chain.send(nullptr);
        receive();
        chain.forget();
        newest_ = pictures_.end();
        inChain_ = 0;
        const bool wasSpoilt = std::exchange(isSpoilt_, false);
        const bool isComplete =
            std::exchange(awaited_, 0) <= 0 || wasSpoilt || !chain.givesNewest();
        if (!isComplete && !owner_.stop_.stop_requested()) throw NotDivisible{};
    }

    /// Says whether the scene becomes darker or brighter, as far as is known. Coders then predict
    /// pictures by scaling others, which makes every small error grow: of blocks whose edges are
    /// not smoothed nothing recognisable may be left.
    bool isLightChanging() const {
        if (newest_ == pictures_.end() || inChain_ < leastForLight) return true;
        const double contrast = newest_->second.contrast;
        const double before = std::prev(newest_)->second.contrast;
        return std::abs(contrast - before) > steadyLightPart * std::max(contrast, before);
    }

    bool isBetweenPicturesOfOneScene(std::int64_t timestamp) const {
        const auto after = pictures_.upper_bound(timestamp);
        if (after == pictures_.begin() || after == pictures_.end()) return false;
        return scenes::areNeighboursOfOneScene(std::prev(after)->second, after->second, pace_,
                                               owner_.plan_.threshold);
    }

    /// Returns the features of a frame; none for a pixel format that cannot be read.
    std::optional<scenes::PictureFeatures> featuresOf(const AVFrame& frame) {
        scenes::PictureSample sample;
        sample.positionTicks = 0;
        if (!owner_.scaler_.scale(frame, sample)) return std::nullopt;
        return scenes::featuresOf(sample);
    }

    void take(const AVFrame& frame, std::int64_t timestamp) {
        const std::optional<scenes::PictureFeatures> features = featuresOf(frame);
        if (!features) return;
        newest_ = pictures_.insert_or_assign(timestamp, *features).first;
        ++inChain_;
        keep(frame, timestamp, *features);
        if (newest_ != pictures_.begin()) followPace();
    }

    void keep(const AVFrame& frame, std::int64_t timestamp,
              const scenes::PictureFeatures& features) {
        const AVPacket* next = keyOf(segment_.groups.size());
        if (next != nullptr && timestamp >= next->pts) return;
        owner_.keeper_.offer(frame, timestamp, features.sharpness);
    }

    void followPace() {
        const double change = differenceOf(std::prev(newest_)->second, newest_->second);
        const double counted = std::min(change, largestTimesPace * pace_ + largestBesidePace);
        pace_ += paceWeight * (counted - pace_);
    }

    /// Returns what the key frame of a group shows; null where that cannot be seen.
    const scenes::PictureFeatures* keyView(std::size_t group) {
        KeyView& view = keyViews_[group];
        if (!std::exchange(view.isKnown, true)) look(*keyOf(group), view);
        return view.features ? &*view.features : nullptr;
    }

    void look(const AVPacket& key, KeyView& view) {
        Decoder& keys = *owner_.keys_;
        keys.send(&key);
        keys.send(nullptr);
        while (const AVFrame* frame = keys.receive()) {
            view.features = featuresOf(*frame);
            view.frame = adopt(av_frame_clone(frame));
        }
        keys.forget();
    }

    std::int64_t damagedSoFar() const { return owner_.chain_->damaged() - forgiven_; }

    /// Tells that so many packets of the group are done, unless that has been told.
    void tellUpTo(std::size_t packets) {
        if (packets <= told_) return;
        tell_(static_cast<double>(packets - told_) / static_cast<double>(packets_));
        told_ = packets;
    }

    SegmentView view(std::int64_t damaged) {
        SegmentView view;
        view.damaged = damaged;
        view.frames = static_cast<std::int64_t>(packets_);
        const AVPacket* next = keyOf(segment_.groups.size());
        for (auto& [timestamp, features] : pictures_) {
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
    std::vector<KeyView> keyViews_;
    /// The picture that the chain has decoded last.
    Pictures::iterator newest_ = pictures_.end();
    /// How many pictures the chain has given since it began.
    int inChain_ = 0;
    /// How much pictures usually change from one to the next.
    double pace_ = 0;
    /// The chain has decoded everything up to here without a gap.
    bool isInChain_ = false;
    /// Frames that were decoded and have not been received.
    std::int64_t awaited_ = 0;
    int vainLooks_ = 0;
    /// When key frames are shown that surely go on with the scene before them.
    std::set<std::int64_t> goingOn_;
    /// The chain has decoded something with parts missing.
    bool isSpoilt_ = false;
    /// Frames that the chain calls damaged for what was missing on purpose.
    std::int64_t forgiven_ = 0;
};

SegmentDecoder::SegmentDecoder(const AVStream& stream, const Plan& plan, std::stop_token stop)
    : plan_(plan), stop_(std::move(stop)), stream_(stream), keeper_(stream, plan.kept) {
    openDecoders();
}

void SegmentDecoder::openDecoders() {
    using enum Decoder::Threads;
    chain_.emplace(stream_, one, Decoder::Size::full, Decoder::Quality::quick);
    keys_.emplace(stream_, one, Decoder::Size::full, Decoder::Quality::quick);
}

SegmentView SegmentDecoder::decode(const Segment& segment, const Tell& tell) {
    SegmentView view = Work(*this, segment, tell).run();
    // Decoders do not forget everything, and what they make up for missing parts may be from
    // before.
    if (chain_->damaged() > 0 || keys_->damaged() > 0) openDecoders();
    return view;
}

}  // namespace reference_host::media
