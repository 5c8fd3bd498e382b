#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fake_host/faces.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {

/// Scores of keyframes, scene by scene.
using Scores = std::vector<std::vector<double>>;

/// A component whose first task, of one kind, has finished on the one material.
class ScoringTest : public ComponentTest {
protected:
    /// Lets a task of `kind` have found what `spec` says.
    FakeTask& found(std::int32_t kind, const MediaSpec& spec) {
        useKinds({kind});
        FakeMedia& material = insert(spec);
        task(0).setSource(&material, 0, 0);
        probe().moveTo(0, 0);
        host().takeJournal();
        return task(0);
    }

    static MediaSpec clip() { return video("clip.mp4", 100 * second); }

    /// Puts keyframes with these scores into the scenes, at 100, 101, ... in the first scene, 200,
    /// 201, ... in the second, and so on.
    void haveScored(const Scores& scores) {
        auto& keyFrames = probe().keyFramesOfScences();
        keyFrames.clear();
        for (std::size_t s = 0; s < scores.size(); ++s) {
            keyFrames.emplace_back();
            auto pos = static_cast<std::int64_t>(s + 1) * 100;
            for (const double score : scores[s])
                keyFrames.back().push_back({static_cast<std::int32_t>(s), score, pos++});
        }
    }

    Scores scores() {
        Scores all;
        for (const auto& scene : probe().keyFramesOfScences()) {
            all.emplace_back();
            for (const auto& keyFrame : scene)
                all.back().push_back(keyFrame.score);
        }
        return all;
    }
};

}  // namespace fake_host
