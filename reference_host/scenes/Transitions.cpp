#include "reference_host/scenes/Transitions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <utility>

#include "reference_host/scenes/CutBar.h"

namespace reference_host::scenes {
namespace {

/// Changes below this differ from no change by the coder's noise only: a repeated picture.
constexpr float repeatedChange = 0.25F;

/// Footage of 5 pictures a second that was brought to a higher rate repeats them for less than
/// this; where nothing changes for longer, the picture stands still.
constexpr std::int64_t longestRepetitionTicks = ticksPerSecond / 5;

/// How many moving pictures on each side are a picture's neighbours, and how far they may be away
/// where pictures are rare. Fewer follow noise, more reach into other movements.
constexpr std::size_t neighbours = 5;
constexpr std::int64_t neighbourhoodTicks = ticksPerSecond;

/// Added to what is around a blend, so that in still footage one counts from the threshold times
/// this on.
constexpr double stillBlend = 2.3;

/// A blend needs more than a cut where pictures are dark or flat: slow drifts of light in them look
/// like weak ones.
constexpr double smallestBlendScale = 0.5;

/// A cut is the largest change within so many frames.
constexpr std::size_t cutClearance = 2;

/// Dissolves that are no further apart are pieces of one.
constexpr std::size_t dissolveClearance = 3;

/// How many times the mean change in a dissolve one step at its ends may reach.
constexpr double largestTimesStep = 2.0;

/// No scene between a dissolve and a cut is shorter: what is found there are two sights of one
/// transition, of which the cut is known to the picture.
constexpr std::int64_t shortestSceneTicks = ticksPerSecond / 5;

/// A picture with less contrast is plain.
constexpr float plainContrast = 2.0F;

/// A plain stretch that lasts longer is a scene of its own.
constexpr std::int64_t longestPlainTicks = 2 * ticksPerSecond;

bool isNear(const FrameSignal& a, const FrameSignal& b) {
    const auto [first, last] = std::minmax(a.positionTicks, b.positionTicks);
    return last - first <= neighbourhoodTicks;
}

bool isRepeated(const FrameSignal& signal) {
    return signal.change < repeatedChange;
}

/// Says whether nothing has changed at a frame for so long that it is no mere repetition.
bool isStill(std::span<const FrameSignal> signals, std::size_t frame) {
    const std::int64_t since = signals[frame].positionTicks - longestRepetitionTicks;
    for (std::size_t i = frame; i > 0 && signals[i].positionTicks > since; --i) {
        if (!isRepeated(signals[i])) return false;
    }
    return true;
}

/// Returns the mean change of a frame's neighbours, without its own and without the largest of
/// them, which may be another cut or a flash. Repeated pictures are skipped: they say nothing about
/// how much the footage moves.
double changeAround(std::span<const FrameSignal> signals, std::size_t frame) {
    std::array<float, 2 * neighbours> changes{};
    std::size_t count = 0;
    const auto take = [&](std::size_t i) {
        if (signals[i].isChangeUnknown) return;
        if (isRepeated(signals[i]) && !isStill(signals, i)) return;
        changes[count++] = signals[i].change;
    };
    const auto isNeighbour = [&](std::size_t i, std::size_t limit) {
        return count < limit && isNear(signals[i], signals[frame]);
    };
    for (std::size_t i = frame; i-- > 1 && isNeighbour(i, neighbours);)
        take(i);
    const std::size_t limit = count + neighbours;
    for (std::size_t i = frame + 1; i < signals.size() && isNeighbour(i, limit); ++i)
        take(i);
    if (count < 2) return 0;
    const auto end = changes.begin() + count;
    const double sum = std::accumulate(changes.begin(), end, 0.0);
    return (sum - *std::max_element(changes.begin(), end)) / static_cast<double>(count - 1);
}

bool isLargestLastingChange(std::span<const FrameSignal> signals, std::size_t frame) {
    const std::size_t first = frame - std::min(frame, cutClearance);
    const std::size_t last = std::min(signals.size() - 1, frame + cutClearance);
    for (std::size_t i = first; i <= last; ++i) {
        const float other = signals[i].lastingChange;
        if (other > signals[frame].lastingChange) return false;
        if (i < frame && other == signals[frame].lastingChange) return false;
    }
    return true;
}

/// Returns how much a blend explains: a short piece of a dissolve may look purer than the whole,
/// but explains less of what is seen.
float weightOf(const Blend& blend) {
    return blend.strength * static_cast<float>(blend.steps);
}

Transition transitionOf(const Blend& blend, std::size_t frame) {
    return {frame - blend.framesBefore + 1, frame, frame + blend.framesAfter};
}

/// Returns the mean strength of the blends from `begin` to before `end`, which is not `begin`.
double meanBlend(std::span<const FrameSignal> signals, std::size_t begin, std::size_t end) {
    double sum = 0;
    for (const FrameSignal& signal : signals.subspan(begin, end - begin)) {
        sum += signal.blend.strength;
    }
    return sum / static_cast<double>(end - begin);
}

/// Returns the mean strength of the blends beside a transition, over its own length, on the quieter
/// side: the other side may hold the second half of a fade. A side cut short by the end of the
/// footage tells nothing.
double blendBeside(std::span<const FrameSignal> signals, const Transition& transition) {
    const std::size_t length = transition.end - transition.begin;
    const bool hasBefore = transition.begin >= length;
    const bool hasAfter = transition.end + length <= signals.size();
    if (!hasBefore && !hasAfter) return 0;
    const auto before = [&] {
        return meanBlend(signals, transition.begin - length, transition.begin);
    };
    const auto after = [&] { return meanBlend(signals, transition.end, transition.end + length); };
    if (!hasBefore) return after();
    if (!hasAfter) return before();
    return std::min(before(), after());
}

bool overlaps(const Transition& a, const Transition& b) {
    return a.begin <= b.end && b.begin <= a.end;
}

bool isBefore(const Transition& a, const Transition& b) {
    return a.boundary < b.boundary;
}

/// Makes one of dissolves that follow each other at once: where a scene moves while it dissolves,
/// the two halves may look more like dissolves than the whole.
std::vector<Transition> withPiecesJoined(std::span<const Transition> dissolves) {
    std::vector<Transition> joined;
    for (const Transition& dissolve : dissolves) {
        if (joined.empty() || dissolve.begin > joined.back().end + dissolveClearance) {
            joined.push_back(dissolve);
        } else {
            joined.back().end = dissolve.end;
            joined.back().boundary = (joined.back().begin + dissolve.end) / 2;
        }
    }
    return joined;
}

/// Says whether `frame` is in the middle half of a dissolve, where its pictures are surely mixed.
bool isInMiddleOf(const Transition& dissolve, std::size_t frame) {
    const std::size_t quarter = (dissolve.end - dissolve.begin) / 4;
    return dissolve.begin + quarter <= frame && frame < dissolve.end - quarter;
}

/// Returns what the changes in a dissolve add up to.
double changeIn(const Transition& dissolve, std::span<const FrameSignal> signals) {
    double sum = 0;
    for (const FrameSignal& signal :
         signals.subspan(dissolve.begin, dissolve.end - dissolve.begin)) {
        sum += signal.change;
    }
    return sum;
}

/// Says whether a cut in a dissolve is most of what changes there: then it is all that there is.
bool isMadeOf(const Transition& dissolve, const Transition& cut,
              std::span<const FrameSignal> signals) {
    const bool isInside = dissolve.begin <= cut.boundary && cut.boundary < dissolve.end;
    return isInside && signals[cut.boundary].lastingChange > changeIn(dissolve, signals) / 2;
}

/// Says whether a cut next to a dissolve is but one more of its steps: the ends of a dissolve are
/// known to a few frames only.
bool isStepOf(const Transition& dissolve, const Transition& cut,
              std::span<const FrameSignal> signals) {
    const bool isBeside = cut.boundary <= dissolve.end + dissolveClearance &&
                          dissolve.begin <= cut.boundary + dissolveClearance;
    const double step =
        changeIn(dissolve, signals) / static_cast<double>(dissolve.end - dissolve.begin);
    return isBeside && signals[cut.boundary].lastingChange <= largestTimesStep * step;
}

bool isAtACut(const Transition& dissolve, std::span<const Transition> cuts,
              std::span<const FrameSignal> signals) {
    return std::any_of(cuts.begin(), cuts.end(), [&](const Transition& cut) {
        const auto [first, last] = std::minmax(cut.boundary, dissolve.boundary);
        return signals[last].positionTicks - signals[first].positionTicks < shortestSceneTicks;
    });
}

/// Shortens a dissolve so that it holds none of the cuts, which are outside its middle.
void endAtCuts(Transition& dissolve, std::span<const Transition> cuts) {
    for (const Transition& cut : cuts) {
        if (cut.boundary <= dissolve.boundary) {
            dissolve.begin = std::max(dissolve.begin, cut.boundary);
        } else {
            dissolve.end = std::min(dissolve.end, cut.boundary);
        }
    }
}

/// Frames without contrast, from begin to before end.
struct PlainStretch {
    std::size_t begin = 0;
    std::size_t end = 0;
};

bool isPlain(const FrameSignal& signal) {
    return signal.contrast <= plainContrast;
}

std::vector<PlainStretch> shortPlainStretches(std::span<const FrameSignal> signals) {
    std::vector<PlainStretch> stretches;
    for (std::size_t begin = 0; begin < signals.size(); ++begin) {
        if (!isPlain(signals[begin])) continue;
        std::size_t end = begin + 1;
        while (end < signals.size() && isPlain(signals[end]))
            ++end;
        const std::int64_t length = signals[end - 1].positionTicks - signals[begin].positionTicks;
        if (length <= longestPlainTicks) stretches.push_back({begin, end});
        begin = end;
    }
    return stretches;
}

/// Says whether a transition leads into or out of a stretch; the ends of a dissolve are known to a
/// fourth of its length only.
bool touches(const Transition& transition, const PlainStretch& stretch) {
    const std::size_t slack = (transition.end - transition.begin) / 4;
    return transition.begin <= stretch.end + slack && stretch.begin <= transition.end + slack;
}

/// Makes one transition of some that touch a plain stretch. A cut among them says best where the
/// new scene begins; without one it is the middle of the stretch.
Transition joinedAcross(const PlainStretch& stretch, std::span<const Transition> touching) {
    Transition joined{stretch.begin, (stretch.begin + stretch.end) / 2, stretch.end};
    for (const Transition& transition : touching) {
        joined.begin = std::min(joined.begin, transition.begin);
        joined.end = std::max(joined.end, transition.end);
        if (transition.isCut()) joined.boundary = transition.boundary;
    }
    return joined;
}

}  // namespace

std::vector<Transition> findCuts(std::span<const FrameSignal> signals, double threshold) {
    std::vector<Transition> cuts;
    for (std::size_t i = 1; i < signals.size(); ++i) {
        const double change = signals[i].lastingChange;
        const double still = stillChange * contrastScale(signals[i - 1].contrast,
                                                         signals[i].contrast, smallestCutScale);
        if (change < threshold * still || !isLargestLastingChange(signals, i)) continue;
        if (change < threshold * (changeAround(signals, i) + still)) continue;
        cuts.push_back({i, i, i});
    }
    return cuts;
}

std::vector<Transition> findDissolves(std::span<const FrameSignal> signals, double threshold) {
    const auto still = [&](std::size_t i) {
        const Blend& blend = signals[i].blend;
        return stillBlend * contrastScale(signals[i - blend.framesBefore].contrast,
                                          signals[i + blend.framesAfter].contrast,
                                          smallestBlendScale);
    };
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        if (signals[i].blend.strength >= threshold * still(i)) candidates.push_back(i);
    }
    std::stable_sort(candidates.begin(), candidates.end(), [&](std::size_t a, std::size_t b) {
        return weightOf(signals[a].blend) > weightOf(signals[b].blend);
    });
    std::vector<Transition> dissolves;
    for (const std::size_t i : candidates) {
        const Transition candidate = transitionOf(signals[i].blend, i);
        const bool taken = std::any_of(dissolves.begin(), dissolves.end(),
                                       [&](const Transition& t) { return overlaps(t, candidate); });
        if (taken) continue;
        const double beside = blendBeside(signals, candidate);
        if (signals[i].blend.strength < threshold * (beside + still(i))) continue;
        dissolves.push_back(candidate);
    }
    std::sort(dissolves.begin(), dissolves.end(), isBefore);
    return withPiecesJoined(dissolves);
}

std::vector<Transition> joinFades(std::span<const FrameSignal> signals,
                                  std::vector<Transition> transitions) {
    for (const PlainStretch& stretch : shortPlainStretches(signals)) {
        const auto touching = std::stable_partition(
            transitions.begin(), transitions.end(),
            [&](const Transition& transition) { return !touches(transition, stretch); });
        if (touching == transitions.end()) continue;
        const Transition joined = joinedAcross(stretch, {touching, transitions.end()});
        transitions.erase(touching, transitions.end());
        const bool atAnEnd = stretch.begin == 0 || stretch.end == signals.size();
        if (!atAnEnd) transitions.push_back(joined);
    }
    std::sort(transitions.begin(), transitions.end(), isBefore);
    return transitions;
}

std::vector<Transition> findTransitions(std::span<const FrameSignal> signals, double threshold) {
    std::vector<Transition> dissolves = findDissolves(signals, threshold);
    std::vector<Transition> transitions = findCuts(signals, threshold);
    std::erase_if(dissolves, [&](const Transition& dissolve) {
        return std::any_of(transitions.begin(), transitions.end(),
                           [&](const Transition& cut) { return isMadeOf(dissolve, cut, signals); });
    });
    std::erase_if(transitions, [&](const Transition& cut) {
        return std::any_of(dissolves.begin(), dissolves.end(), [&](const Transition& dissolve) {
            return isInMiddleOf(dissolve, cut.boundary) || isStepOf(dissolve, cut, signals);
        });
    });
    std::erase_if(dissolves, [&](const Transition& dissolve) {
        return isAtACut(dissolve, transitions, signals);
    });
    for (Transition& dissolve : dissolves)
        endAtCuts(dissolve, transitions);
    transitions.insert(transitions.end(), dissolves.begin(), dissolves.end());
    std::sort(transitions.begin(), transitions.end(), isBefore);
    return joinFades(signals, std::move(transitions));
}

}  // namespace reference_host::scenes
