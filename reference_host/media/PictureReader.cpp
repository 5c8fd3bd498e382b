#include "reference_host/media/PictureReader.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <thread>
#include <utility>

#include "host/status.h"
#include "reference_host/media/Container.h"
#include "reference_host/media/FrameClock.h"
#include "reference_host/media/SegmentedPictures.h"
#include "reference_host/media/SequentialPictures.h"

namespace reference_host::media {
namespace {

/// What the frames of all threads may take together: each has two decoders, which keep up to some
/// twelve of them.
constexpr std::int64_t mostDecodedBytes = std::int64_t{640} << 20;
constexpr std::int64_t framesOfThread = 24;

/// More threads than this wait for the disk and for each other.
constexpr unsigned mostThreads = 16;

/// Two key frames may be so many pictures apart: 40 seconds at 30 a second. A segment holds the
/// packets of all of them.
constexpr std::int64_t mostPicturesBetweenKeys = 1200;

/// What the pictures that are kept of one video may take together, and the part of it for those
/// beyond one of each part of the time.
constexpr std::int64_t keptBytes = std::int64_t{56} << 20;
constexpr double extraPart = 0.25;

/// In a still scene, three pictures are left out at a time that others need: of more, some would
/// need others of them, and copies of copies differ more.
constexpr std::int64_t mostStepsOfStillness = 4;

/// Formats whose key frames stand for themselves, and for which decoders know no pictures across
/// them. Others have key frames in name only, or keep a canvas that is drawn on.
bool standAlone(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_H264:
        case AV_CODEC_ID_HEVC:
        case AV_CODEC_ID_VP8:
        case AV_CODEC_ID_VP9:
        case AV_CODEC_ID_AV1:
        case AV_CODEC_ID_MPEG1VIDEO:
        case AV_CODEC_ID_MPEG2VIDEO:
        case AV_CODEC_ID_MPEG4:
        case AV_CODEC_ID_MJPEG:
        case AV_CODEC_ID_PRORES:
        case AV_CODEC_ID_DNXHD:
        case AV_CODEC_ID_DVVIDEO:
        case AV_CODEC_ID_HUFFYUV:
        case AV_CODEC_ID_UTVIDEO:
        case AV_CODEC_ID_RAWVIDEO:
            return true;
        default:
            return false;
    }
}

bool hasFields(const AVCodecParameters& codec) {
    return codec.field_order != AV_FIELD_UNKNOWN && codec.field_order != AV_FIELD_PROGRESSIVE;
}

/// Returns the longest distance between two key frames, or between the last one and the end.
std::int64_t longestGroup(const FootageFacts& facts) {
    std::int64_t longest = 0;
    std::int64_t before = facts.keyTimestamps.front();
    for (const std::int64_t key : facts.keyTimestamps)
        longest = std::max(longest, key - std::exchange(before, key));
    return std::max(longest, facts.lastTimestamp - before);
}

bool isDivisible(const AVStream& stream, const FootageFacts& facts) {
    if (facts.keyTimestamps.size() < 2 || !standAlone(stream.codecpar->codec_id)) return false;
    if (hasFields(*stream.codecpar)) return false;
    const std::int64_t longest = longestGroup(facts);
    const std::int64_t length = facts.lastTimestamp - facts.originTimestamp;
    return longest / FrameClock(stream).ordinaryDistance() <= mostPicturesBetweenKeys &&
           longest - length / 2 <= length / 8;
}

std::int64_t inUnitsOf(const AVStream& stream, double ticks) {
    const double units = ticks / KOR::ticksPerSecond * av_q2d(av_inv_q(stream.time_base));
    return static_cast<std::int64_t>(std::clamp(units, 0.0, 9e18));
}

/// Returns how many threads decode; no worker where not one of them has room.
SegmentedPictures::Crew crewFor(const AVCodecParameters& codec, unsigned wanted) {
    const std::int64_t frameBytes =
        std::max<std::int64_t>(1, std::int64_t{codec.width} * codec.height * 3 / 2);
    const std::int64_t affordable = mostDecodedBytes / (framesOfThread * frameBytes);
    const unsigned useful = wanted > 0 ? wanted : std::thread::hardware_concurrency();
    const std::int64_t workers = std::min<std::int64_t>(affordable, std::min(useful, mostThreads));
    const std::int64_t helpers =
        std::max<std::int64_t>(0, std::min(affordable, 2 * workers - 1) - workers);
    return {static_cast<std::size_t>(workers), static_cast<std::size_t>(helpers)};
}

/// Returns the grid in which pictures of `stream` are kept: so coarse that they find room together.
TimeGrid gridFor(const AVStream& stream, const FootageFacts& facts, std::int64_t shortestTicks) {
    if (shortestTicks <= 0) return {};
    const int side = std::max({1, stream.codecpar->width, stream.codecpar->height});
    const double scale = std::min(1.0, static_cast<double>(vision::maxPictureSidePx) / side);
    const double pixels = std::max(1.0, scale * stream.codecpar->width) *
                          std::max(1.0, scale * stream.codecpar->height);
    const double picturesWithRoom = static_cast<double>(keptBytes) / (pixels * 1.5 + 4096);
    const double extras = picturesWithRoom * extraPart;
    const double ticks =
        std::max(static_cast<double>(shortestTicks),
                 static_cast<double>(facts.durationTicks) / (picturesWithRoom - extras));
    return {facts.originTimestamp, std::max<std::int64_t>(1, inUnitsOf(stream, ticks)),
            static_cast<std::size_t>(extras)};
}

}  // namespace

class PictureReader::Stream {
public:
    Stream(const std::filesystem::path& file, const FootageFacts& facts, const Plan& plan,
           std::stop_token stop, Tell tell)
        : file_(file),
          facts_(facts),
          stop_(std::move(stop)),
          tell_(std::move(tell)),
          container_(std::make_unique<Container>(file, stop_)),
          clock_(container_->video()),
          grid_(gridFor(container_->video(), facts, plan.shortestKeptTicks)) {
        open(plan);
    }

    bool next(scenes::PictureFeatures& picture) {
        std::int64_t timestamp = 0;
        while (takeNext(timestamp, picture)) {
            const auto position = clock_.positionOf(timestamp, facts_.originTimestamp);
            if (!position || *position <= lastPosition_ || *position >= facts_.durationTicks) {
                continue;
            }
            picture.positionTicks = lastPosition_ = *position;
            if (isSequential_) tell_(shareUpTo(*position));
            return true;
        }
        return false;
    }

    Damage damage() const { return source_->damage(); }

    std::vector<Kept> takeKept() {
        std::vector<Kept> all;
        for (KeptPicture& kept : source_->takeKept()) {
            const auto position = clock_.positionOf(kept.timestamp, facts_.originTimestamp);
            if (position) all.push_back({*position, std::move(kept.picture)});
        }
        return all;
    }

private:
    void open(const Plan& plan) {
        const AVStream& video = container_->video();
        if (!isDivisible(video, facts_)) return openSequential();
        const SegmentedPictures::Crew crew = crewFor(*video.codecpar, plan.threads);
        if (crew.workers == 0) return openSequential();
        const auto units = [&video](std::int64_t ticks) {
            return inUnitsOf(video, static_cast<double>(ticks));
        };
        const LongestGap gap{
            units(plan.gap.always), units(plan.gap.most), plan.gap.part, units(plan.gap.brief),
            std::min(units(plan.gap.still), mostStepsOfStillness * clock_.ordinaryDistance())};
        source_ = std::make_unique<SegmentedPictures>(
            std::move(container_), facts_,
            SegmentDecoder::Plan{plan.threshold, gap, KeyRhythm(facts_.keyTimestamps), grid_}, crew,
            stop_, tell_);
    }

    void openSequential() {
        isSequential_ = true;
        source_ = std::make_unique<SequentialPictures>(file_, grid_, stop_);
    }

    /// Where the video turns out not to be what its packets promise, everything is decoded from the
    /// beginning on; what has been given is not given again.
    bool takeNext(std::int64_t& timestamp, scenes::PictureFeatures& picture) {
        try {
            return source_->next(timestamp, picture);
        } catch (const NotDivisible&) {
            openSequential();
        } catch (const SegmentTooLong&) {
            openSequential();
        }
        return source_->next(timestamp, picture);
    }

    double shareUpTo(std::int64_t positionTicks) const {
        return static_cast<double>(positionTicks) / static_cast<double>(facts_.durationTicks);
    }

    const std::filesystem::path file_;
    const FootageFacts facts_;
    const std::stop_token stop_;
    const Tell tell_;
    std::unique_ptr<Container> container_;
    const FrameClock clock_;
    const TimeGrid grid_;
    std::unique_ptr<PictureSource> source_;
    bool isSequential_ = false;
    std::int64_t lastPosition_ = -1;
};

PictureReader::PictureReader(const std::filesystem::path& file, const FootageFacts& facts,
                             const Plan& plan, std::stop_token stop, Tell tell)
    : stream_(std::make_unique<Stream>(file, facts, plan, std::move(stop), std::move(tell))) {}

PictureReader::~PictureReader() = default;

bool PictureReader::next(scenes::PictureFeatures& picture) {
    return stream_->next(picture);
}

std::vector<PictureReader::Kept> PictureReader::takeKept() {
    return stream_->takeKept();
}

Damage PictureReader::damage() const {
    return stream_->damage();
}

}  // namespace reference_host::media
