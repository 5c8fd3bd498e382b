#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

#include "reference_host/media/KeyRhythm.h"
#include "reference_host/media/PictureChain.h"
#include "reference_host/media/PictureKeeper.h"
#include "reference_host/media/PictureScaler.h"
#include "reference_host/media/PictureSource.h"
#include "reference_host/media/SeenPictures.h"
#include "reference_host/media/Segment.h"
#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host::media {

/// A picture of a segment and when it is shown, in the unit of its stream.
struct SegmentPicture {
    std::int64_t timestamp = 0;
    scenes::PictureFeatures features;
};

/// What is seen in a segment: the pictures that were decoded, in the order in which they are shown.
struct SegmentView {
    std::vector<SegmentPicture> pictures;
    /// The last scene goes on in the next segment's first picture; see PictureFeatures.
    bool goesOn = false;
    /// How many pictures behind the last one were left out.
    std::uint32_t leftOutBehind = 0;
    std::vector<KeptPicture> kept;
    /// How many frames were lost, or decoded with parts made up.
    std::int64_t damaged = 0;
    /// How many frames the segment holds, decoded or not.
    std::int64_t frames = 0;
};

/// Decodes as little of segments as shows their scenes. Belongs to one thread at a time.
///
/// Three kinds of pictures are left out. Those that no other picture needs, where the pictures on
/// both sides show one view: seen from there, no scene begins between them. Others, where nothing
/// moves there and the plan allows it. And the rest of a group of pictures, where the packets'
/// sizes tell of nothing new and the next key frame either shows the view of the last picture, or a
/// new one that has surely begun with itself.
class SegmentDecoder {
public:
    struct Plan {
        /// The ratio by which changes have to stand out; see SceneAnalysis. The lower, the more is
        /// decoded.
        double threshold = 3.0;
        /// How long a stretch may be of which nothing is decoded, in the unit of the stream.
        LongestGap gap = {};
        KeyRhythm rhythm = {};
        /// One picture of each part is kept.
        TimeGrid kept = {};
    };

    /// `stream` has to outlive this. Decoding ends soon after `stop` is requested. Throws
    /// MediaError where it cannot be decoded.
    SegmentDecoder(const AVStream& stream, const Plan& plan, std::stop_token stop);

    /// Takes in that a part of the segment, of 1 for the whole, is done.
    using Tell = std::function<void(double part)>;

    /// Returns what is seen in `segment`: the same for equal segments, whatever was decoded before.
    /// After a stop it means nothing. Throws NotDivisible.
    SegmentView decode(const Segment& segment, const Tell& tell);

private:
    class Work;

    void openDecoders();

    const Plan plan_;
    const std::stop_token stop_;
    const AVStream& stream_;
    /// Seeing dissolves whole, so that their middle is found to the picture, takes up to a fifth
    /// longer; H.264, the most usual format, is to be fast instead.
    const SeenPictures::Blends blends_;
    std::unique_ptr<PictureChain> chain_;
    /// Decodes key frames that are looked at before what is in front of them, and takes the place
    /// of `chain_` where decoding goes on from there.
    std::unique_ptr<PictureChain> ahead_;
    PictureScaler scaler_;
    PictureKeeper keeper_;
};

}  // namespace reference_host::media
