#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "reference_host/scenes/FrameSignal.h"

namespace reference_host::scenes {

/// The passage from one scene to the next, in frame indices.
struct Transition {
    /// The first frame that is no longer purely the old scene.
    std::size_t begin = 0;
    /// Where the new scene is taken to begin.
    std::size_t boundary = 0;
    /// The first frame that is purely the new scene; in a cut all three are the same.
    std::size_t end = 0;

    bool isCut() const { return begin == end; }
};

/// Finds the cuts: changes that last and that stand out from those around them by `threshold`.
std::vector<Transition> findCuts(std::span<const FrameSignal> signals, double threshold);

/// Finds the dissolves, also those to and from a plain picture, by the same rule on the blends.
std::vector<Transition> findDissolves(std::span<const FrameSignal> signals, double threshold);

/// Makes one of the transitions that lead into and out of one short plain stretch: a fade through
/// black, white or another colour. A plain stretch at either end of the footage is no scene.
std::vector<Transition> joinFades(std::span<const FrameSignal> signals,
                                  std::vector<Transition> transitions);

/// Finds all transitions, in ascending order of their boundaries.
std::vector<Transition> findTransitions(std::span<const FrameSignal> signals, double threshold);

}  // namespace reference_host::scenes
