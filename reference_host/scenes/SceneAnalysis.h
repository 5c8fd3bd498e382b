#pragma once

#include <cstdint>
#include <memory>

#include "reference_host/scenes/FootageRecord.h"
#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host::scenes {

/// Finds the scenes of one video while its pictures pass by.
///
/// Cuts, dissolves, and fades through black, white or another plain colour begin a scene: a cut at
/// the first picture of the new scene, a dissolve or fade in its middle. Flashes, flicker, pans,
/// zooms, shakes and passing objects do not. Keeps a few seconds of thumbnails and a record of a
/// few bytes for each picture. Belongs to one thread at a time.
class SceneAnalysis {
public:
    /// `threshold` is the ratio by which a picture's change must stand out from that of its
    /// neighbours to begin a scene; 3.0 suits ordinary footage, a lower one finds more scenes. One
    /// that is not a number above 0 counts as 3.0.
    explicit SceneAnalysis(double threshold);
    SceneAnalysis(SceneAnalysis&&) noexcept;
    SceneAnalysis& operator=(SceneAnalysis&&) noexcept;
    ~SceneAnalysis();

    /// Takes the next picture. Pictures come in ascending position; one at or before the position
    /// of the picture before is left out, and so is one before 0.
    void add(const PictureFeatures& picture);

    /// Returns what was found, once all pictures have been added; `durationTicks` is where the last
    /// one ends. Call it once, as the last operation.
    FootageRecord finish(std::int64_t durationTicks);

private:
    class Pipeline;
    std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace reference_host::scenes
