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
/// they tell how far it reaches. So are the first ones of a segment: how the one before it
/// ends is not known here.
constexpr int stepsToBlend = 2;

/// Where the light is steady, a picture has up to so many times the contrast of the one before it,
/// or that of this one. Small errors grow where light comes up, and shrink where it goes.
constexpr float steadyRise = 1.04F;
constexpr float steadyFall = 1.06F;

}  // namespace

bool SeenPictures::add(std::int64_t timestamp, const scenes::PictureFeatures& features) {
    newest_ = pictures_.insert_or_assign(timestamp, features).first;
    if (blends_ == Blends::whole) followBlend();
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

/// Counts the newest picture and the two shown before it as part of a dissolve, if they may be: of
/// the one before where all of it still changes steadily. Not across what was left out.
void SeenPictures::followBlend() {
    if (newest_ == pictures_.begin() || (blend_ && newest_->first <= blend_->end)) return;
    const auto middle = std::prev(newest_);
    if (middle == pictures_.begin() || goesOnAt(middle->first) || goesOnAt(newest_->first)) return;
    const auto first = std::prev(middle);
    if (!scenes::mayBlend(first->second, middle->second, newest_->second)) return;
    const bool goesOn = blend_ && middle->first <= blend_->end && mayBlendSince(blend_->begin);
    blend_ = {goesOn ? blend_->begin : first->first, newest_->first};
    if (isNewViewAfter(*blend_)) needAround(*blend_);
}

/// Says whether the first and the last picture of a blend differ by as much as a cut does at least.
bool SeenPictures::isNewViewAfter(const Stretch& blend) const {
    const scenes::PictureFeatures& first = pictures_.find(blend.begin)->second;
    const scenes::PictureFeatures& last = pictures_.find(blend.end)->second;
    return scenes::differenceOf(first, last) >=
           scenes::leastCut(first.contrast, last.contrast, threshold_);
}

/// Counts what belongs to a dissolve as needed, with what tells where that ends.
void SeenPictures::needAround(const Stretch& blend) {
    const std::int64_t end = blend.end + (blend.end - blend.begin) / 2;
    if (needed_ && blend.begin < needed_->end) {
        needed_->end = std::max(needed_->end, end);
    } else {
        needed_ = {blend.begin, end};
    }
}

/// Says whether all from a picture that has been seen up to the newest one may be one dissolve.
bool SeenPictures::mayBlendSince(std::int64_t begin) const {
    const auto first = pictures_.find(begin);
    const auto middle = pictures_.lower_bound(begin + (newest_->first - begin) / 2);
    return scenes::mayBlend(first->second, middle->second, newest_->second);
}

bool SeenPictures::isNearBlend(std::int64_t timestamp) const {
    return needed_ && timestamp > needed_->begin && timestamp < needed_->end;
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
    return contrast > steadyRise * before || before > steadyFall * contrast;
}

bool SeenPictures::isBetweenPicturesOfOneScene(std::int64_t timestamp) const {
    const auto after = pictures_.upper_bound(timestamp);
    if (after == pictures_.begin() || after == pictures_.end()) return false;
    const auto before = std::prev(after);
    return scenes::areNeighboursOfOneScene(before->second, after->second, pace_, threshold_) &&
           !(blends_ == Blends::whole && isInBlend(before, after)) && !isNearBlend(timestamp);
}

bool SeenPictures::isInStillness(std::int64_t timestamp, std::int64_t longest) const {
    const auto after = pictures_.lower_bound(timestamp);
    if (after == pictures_.begin() || after == pictures_.end()) return false;
    const auto before = std::prev(after);
    return after->first != timestamp && after->first - before->first <= longest &&
           !isLightChanging() && scenes::areStill(before->second, after->second, threshold_);
}

bool SeenPictures::isInBlend(ByTimestamp::const_iterator before,
                             ByTimestamp::const_iterator after) const {
    auto first = before;
    for (int i = 0; i < stepsToBlend; ++i) {
        if (first == pictures_.begin()) return true;
        --first;
    }
    auto end = after;
    for (int i = 0; i <= stepsToBlend && end != pictures_.end(); ++i)
        ++end;
    for (auto middle = std::next(first); std::next(middle) != end; first = middle++) {
        if (scenes::mayBlend(first->second, middle->second, std::next(middle)->second)) return true;
    }
    return false;
}

}  // namespace reference_host::media
