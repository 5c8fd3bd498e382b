#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference_host/scenes/BlendSignal.h"
#include "reference_host/scenes/ChangeSignal.h"
#include "reference_host/scenes/FrameSignal.h"
#include "reference_host/scenes/PairDifferences.h"
#include "reference_host/scenes/PictureFeatures.h"
#include "reference_host/scenes/ThumbnailWindow.h"

namespace reference_host::scenes {

/// Computes the signal of each picture of a stream, from two windows: one of every picture, for
/// cuts, and one of pictures at a limited rate, for dissolves, which need seconds rather than
/// frames. In the second one, mixes of their neighbours stand in for pictures that were left out,
/// so that both halves of a dissolve have as many.
class SignalBuilder {
public:
    /// Takes the next picture; positions ascend strictly.
    void add(const PictureFeatures& picture);

    /// Returns the signals of all pictures, in order. Call it once, as the last operation.
    std::vector<FrameSignal> finish();

private:
    void addForChange(const WindowPicture& picture);
    void addForBlend(WindowPicture picture);
    void pushForBlend(const WindowPicture& picture);
    void addStandIns(const WindowPicture& next);
    void setChange(std::size_t number);
    void setBlend(std::size_t number);

    std::vector<FrameSignal> signals_;
    ThumbnailWindow changeWindow_{2 * lastingReach + 2};
    PairDifferences changePairs_{lastingReach + 2};
    ThumbnailWindow blendWindow_{2 * blendReach + 1};
};

}  // namespace reference_host::scenes
