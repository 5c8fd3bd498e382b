#include "reference_host/media/SeenPictures.h"

#include <algorithm>
#include <iterator>

#include "reference_host/scenes/CutBar.h"

namespace reference_host::media {
namespace {

/// Over so many pictures movement is measured.
constexpr int picturesOfPace = 4;

/// How fast the usual change from one picture to the next follows that of the newest, and how many
/// times as much the newest may count: a cut or flash is not usual.
constexpr double paceWeight = 0.25;
constexpr double largestTimesPace = 3;
constexpr double largestBesidePace = 3;

/// Pictures are seen as part of a dissolve up to so many before and behind what looks like one:
/// they tell how far it reaches.
constexpr int stepsToBlend = 2;

/// Where the light is steady, one of two neighbours has up to so many times the other's contrast.
constexpr float steadyLight = 1.04F;

}  // namespace

bool SeenPictures::add(std::int64_t timestamp, const scenes::PictureFeatures& features) {
    newest_ = pictures_.insert_or_assign(timestamp, features).first;
    // What has changed while nothing was decoded says nothing of the pace.
    return newest_ != pictures_.begin() && !goesOnAt(timestamp) && followPace();
}

/// Counts the newest picture's change in the pace; says whether it is more than movement.
bool SeenPictures::followPace() {
    const scenes::PictureFeatures& before = std::prev(newest_)->second;
    const double change = scenes::differenceOf(before, newest_->second);
    const double least = scenes::leastCut(before.contrast, newest_->second.contrast, threshold_);
    const bool isNewView = change >= least + threshold_ * pace_;
    const double counted = std::min(change, largestTimesPace * pace_ + largestBesidePace);
    pace_ += paceWeight * (counted - pace_);
    return isNewView;
}

const scenes::PictureFeatures* SeenPictures::at(std::int64_t timestamp) const {
    const auto found = pictures_.find(timestamp);
    return found == pictures_.end() ? nullptr : &found->second;
}

const scenes::PictureFeatures* SeenPictures::newest() const {
    return newest_ == pictures_.end() ? nullptr : &newest_->second;
}

double SeenPictures::latestMovement(std::int64_t begin) const {
    const auto latest = std::prev(pictures_.end());
    const auto first = pictures_.lower_bound(begin);
    auto earlier = latest;
    for (int i = 0; i < picturesOfPace && first != pictures_.end() && earlier != first; ++i)
        --earlier;
    return scenes::differenceOf(earlier->second, latest->second);
}

bool SeenPictures::mayBeOneViewSince(std::int64_t begin,
                                     const scenes::PictureFeatures& picture) const {
    const auto first = pictures_.lower_bound(begin);
    return first != pictures_.end() && std::all_of(first, pictures_.end(), [&](const auto& seen) {
               return scenes::mayBeOneView(seen.second, picture, threshold_);
           });
}

bool SeenPictures::isLightChanging() const {
    if (newest_ == pictures_.end() || scenes::isPlain(newest_->second)) return true;
    if (newest_ == pictures_.begin()) return false;
    const float contrast = newest_->second.contrast;
    const float before = std::prev(newest_)->second.contrast;
    return std::max(contrast, before) > steadyLight * std::min(contrast, before);
}

bool SeenPictures::isBetweenPicturesOfOneScene(std::int64_t timestamp) const {
    const auto after = pictures_.upper_bound(timestamp);
    if (after == pictures_.begin() || after == pictures_.end()) return false;
    const auto before = std::prev(after);
    return scenes::areNeighboursOfOneScene(before->second, after->second, pace_, threshold_) &&
           !(blends_ == Blends::whole && isInBlend(before, after));
}

bool SeenPictures::isInBlend(ByTimestamp::const_iterator before,
                             ByTimestamp::const_iterator after) const {
    auto first = before;
    for (int i = 0; i < stepsToBlend && first != pictures_.begin(); ++i)
        --first;
    auto end = after;
    for (int i = 0; i <= stepsToBlend && end != pictures_.end(); ++i)
        ++end;
    for (auto middle = std::next(first); std::next(middle) != end; first = middle++) {
        if (scenes::mayBlend(first->second, middle->second, std::next(middle)->second)) return true;
    }
    return false;
}

}  // namespace reference_host::media
