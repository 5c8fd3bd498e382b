#pragma once

#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host::scenes {

/// Added to what moves around a change, so that in still footage a change counts from the threshold
/// times this on. In ordinary footage, at the default threshold, that is what a sudden gesture in a
/// still scene reaches, and the weakest cuts begin above twice as much.
constexpr double stillChange = 3.0;

/// How far `stillChange` shrinks in dark or flat pictures: changes are smaller there, but grain and
/// the steps of 8 bits are not.
constexpr double smallestCutScale = 0.25;

/// Returns how large changes between two pictures of these contrasts are, in relation to those
/// between ordinary ones; from `smallest` to 1.
double contrastScale(float contrastBefore, float contrastAfter, double smallest);

/// Returns the least change between two pictures of these contrasts that can be a cut, where
/// nothing else moves.
double leastCut(float contrastBefore, float contrastAfter, double threshold);

/// Says whether a picture is dark or flat: a fade may lead to it or begin with it.
bool isPlain(const PictureFeatures& picture);

/// Returns how far two pictures are apart: the overall part of differenceBetween().
double differenceOf(const PictureFeatures& before, const PictureFeatures& after);

/// What two pictures with others between them tell about these.
enum class Passage {
    sameView,   ///< both show one scene, nearly unchanged
    movedView,  ///< both show one scene if no cut is known to be between them
    newView,    ///< a new scene begins between them, and no movement explains it
    unclear
};

/// Tells whether a scene begins between two pictures. `pace` is how much pictures differ near them,
/// at some distance, for which the movement in the scene is to blame.
Passage passageBetween(const PictureFeatures& before, const PictureFeatures& after, double pace,
                       double threshold);

/// Says whether two pictures differ by no more than movement in one scene may explain.
bool mayBeOneView(const PictureFeatures& before, const PictureFeatures& after, double threshold);

/// Says whether pictures between these two, which are next to each other but for a few, need not be
/// looked at to find a cut. `pace` is as above, for pictures at such a distance.
bool areNeighboursOfOneScene(const PictureFeatures& before, const PictureFeatures& after,
                             double pace, double threshold);

/// Says whether next to nothing moves or changes from one picture to another shortly behind it:
/// either may be taken for what is between them.
bool areStill(const PictureFeatures& before, const PictureFeatures& after, double threshold);

/// Says whether three pictures, which follow each other at a few pictures' distance, may be part of
/// a dissolve or fade: what changes from the first to the last does so steadily.
bool mayBlend(const PictureFeatures& first, const PictureFeatures& middle,
              const PictureFeatures& last);

}  // namespace reference_host::scenes
