#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>

#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host::media {

/// The pictures of a segment that have been decoded, and what follows from them for those that have
/// not. Timestamps are in the unit of the stream, of when pictures are shown.
///
/// Pictures come in chains, each decoded one after the other from a key frame on; between two
/// chains something has been left out.
class SeenPictures {
public:
    enum class Blends {
        whole,  ///< no picture is left out where a dissolve may be under way
        sparse  ///< where it need not be found to the picture
    };

    using ByTimestamp = std::map<std::int64_t, scenes::PictureFeatures>;

    /// `threshold` is the ratio by which changes have to stand out; see SceneAnalysis.
    SeenPictures(double threshold, Blends blends) : threshold_(threshold), blends_(blends) {}
    SeenPictures(const SeenPictures&) = delete;
    SeenPictures& operator=(const SeenPictures&) = delete;

    /// Takes the next picture of the chain. Says whether it shows another view than the one before
    /// it, as far as is known.
    bool add(std::int64_t timestamp, const scenes::PictureFeatures& features);

    void endChain() { newest_ = pictures_.end(); }

    /// From here on, the picture shown at `timestamp` is known to go on with the scene before it,
    /// though what is between them is left out.
    void goOnAt(std::int64_t timestamp) { goingOn_.insert(timestamp); }

    bool goesOnAt(std::int64_t timestamp) const { return goingOn_.contains(timestamp); }

    const ByTimestamp& all() const { return pictures_; }

    /// Returns what the picture shown at `timestamp` shows; null for one that has not been seen.
    const scenes::PictureFeatures* at(std::int64_t timestamp) const;

    /// Returns the picture that the chain has given last; null at its beginning.
    const scenes::PictureFeatures* newest() const;

    /// Returns, of all pictures, the one that is shown last. There has to be one.
    const scenes::PictureFeatures& last() const { return pictures_.rbegin()->second; }

    /// Returns how much the last pictures from `begin` on differ.
    double latestMovement(std::int64_t begin) const;

    /// Says whether there are pictures from `begin` on and all of them show what `picture` shows,
    /// but for movement.
    bool mayBeOneViewSince(std::int64_t begin, const scenes::PictureFeatures& picture) const;

    /// Says whether the scene becomes darker or brighter, as far as is known. Coders then predict
    /// pictures by scaling others, which makes every small error grow: of blocks whose edges are
    /// not smoothed nothing recognisable may be left.
    bool isLightChanging() const;

    /// Says whether a picture that would be shown at `timestamp` belongs to a dissolve that has
    /// been seen to begin, or comes so closely behind one that it tells where that ends: up to half
    /// as long as the dissolve takes. Never where blends are sparse.
    bool isNearBlend(std::int64_t timestamp) const;

    /// Says whether a picture that would be shown at `timestamp` need not be seen: those before and
    /// after it show one view.
    bool isBetweenPicturesOfOneScene(std::int64_t timestamp) const;

    /// Says whether a picture that would be shown at `timestamp`, and has not been seen, is between
    /// two that are no more than `longest` apart and show a scene in which nothing moves and the
    /// light is steady.
    bool isInStillness(std::int64_t timestamp, std::int64_t longest) const;

private:
    struct Stretch {
        std::int64_t begin = 0;
        std::int64_t end = 0;
    };

    bool followPace();
    void followBlend();
    bool isNewViewAfter(const Stretch& blend) const;
    void needAround(const Stretch& blend);
    bool mayBlendSince(std::int64_t begin) const;
    bool isInBlend(ByTimestamp::const_iterator before, ByTimestamp::const_iterator after) const;

    double threshold_;
    Blends blends_;
    ByTimestamp pictures_;
    ByTimestamp::iterator newest_ = pictures_.end();
    std::set<std::int64_t> goingOn_;
    /// How much pictures usually change from one to the next.
    double pace_ = 0;

    /// The latest pictures that may be a dissolve: when the first and the last of them are shown.
    std::optional<Stretch> blend_;
    /// The latest stretch of time in which all pictures are needed for the sake of dissolves.
    std::optional<Stretch> needed_;
};

}  // namespace reference_host::media
