#include "reference_host/scenes/CutBar.h"

#include <algorithm>

#include "reference_host/scenes/Difference.h"

namespace reference_host::scenes {
namespace {

constexpr double ordinaryContrast = 32.0;

/// Two pictures with a quiet stretch between them show one view if they differ by so many times the
/// least cut: people move meanwhile, but new scenes differ by four times as much.
constexpr double sameViewPart = 2.0;

/// Up to so many times, movement in a second or more may explain it.
constexpr double movedViewPart = 4.0;

/// From so many times the least cut on, with the movement near them added, it is a new view.
constexpr double newViewPart = 4.0;

/// Plain pictures have less contrast than this: half an ordinary picture's.
constexpr double plainContrast = ordinaryContrast / 2;

/// Room for the movement between two neighbours, which may make a cut look smaller.
constexpr double neighbourPart = 0.8;

/// Two pictures of a still scene differ, pixel by pixel, by no more than this part of the least cut
/// at an ordinary threshold, or at a lower one. Twice as much is too much: predicted from pictures
/// that differ so much from what is missing, some boundaries are no longer to be seen.
constexpr double stillPart = 0.45;
constexpr double ordinaryThreshold = 3.0;

/// The part of the pace between pictures that are two or three steps apart that is found between
/// neighbours.
constexpr double paceOfOneStep = 0.5;

/// A blend changes at least so much over two steps: less is grain.
constexpr double leastBlend = 2.0;

/// How badly a mix of its neighbours may explain the middle picture of a blend, and how much of the
/// change may fall to one of the two steps.
constexpr float largestBlendResidual = 0.5F;
constexpr float largestShareOfOneStep = 0.85F;

}  // namespace

double contrastScale(float contrastBefore, float contrastAfter, double smallest) {
    return std::clamp(std::max(contrastBefore, contrastAfter) / ordinaryContrast, smallest, 1.0);
}

double leastCut(float contrastBefore, float contrastAfter, double threshold) {
    return threshold * stillChange * contrastScale(contrastBefore, contrastAfter, smallestCutScale);
}

bool isPlain(const PictureFeatures& picture) {
    return picture.contrast < plainContrast;
}

double differenceOf(const PictureFeatures& before, const PictureFeatures& after) {
    return differenceBetween(before.thumbnail, after.thumbnail).overall;
}

Passage passageBetween(const PictureFeatures& before, const PictureFeatures& after, double pace,
                       double threshold) {
    const Difference difference = differenceBetween(before.thumbnail, after.thumbnail);
    const double least = leastCut(before.contrast, after.contrast, threshold);
    if (difference.overall <= sameViewPart * least) return Passage::sameView;
    if (difference.overall <= movedViewPart * least) return Passage::movedView;
    const bool standsOut = difference.widespread >= newViewPart * least + threshold * pace;
    return standsOut && !isPlain(before) && !isPlain(after) ? Passage::newView : Passage::unclear;
}

bool mayBeOneView(const PictureFeatures& before, const PictureFeatures& after, double threshold) {
    const Passage passage = passageBetween(before, after, 0, threshold);
    return passage == Passage::sameView || passage == Passage::movedView;
}

bool mayBlend(const PictureFeatures& first, const PictureFeatures& middle,
              const PictureFeatures& last) {
    const Mixture mixture = mixtureOf(first.thumbnail, middle.thumbnail, last.thumbnail);
    return mixture.residual <= largestBlendResidual && mixture.share <= largestShareOfOneStep &&
           mixture.share >= 1 - largestShareOfOneStep && differenceOf(first, last) >= leastBlend;
}

bool areStill(const PictureFeatures& before, const PictureFeatures& after, double threshold) {
    const double least =
        leastCut(before.contrast, after.contrast, std::min(threshold, ordinaryThreshold));
    return unmovedDifference(before.thumbnail, after.thumbnail) <= stillPart * least;
}

bool areNeighboursOfOneScene(const PictureFeatures& before, const PictureFeatures& after,
                             double pace, double threshold) {
    const double least = leastCut(before.contrast, after.contrast, threshold);
    return differenceOf(before, after) <=
           neighbourPart * (least + threshold * paceOfOneStep * pace);
}

}  // namespace reference_host::scenes
