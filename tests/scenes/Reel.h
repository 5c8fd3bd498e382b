#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "reference_host/scenes/SceneAnalysis.h"
#include "tests/scenes/Scenery.h"

namespace reference_host::scenes {

/// Footage made picture by picture, at a steady rate.
class Reel {
public:
    explicit Reel(double picturesPerSecond = 25) : rate_(picturesPerSecond) {}

    /// Appends one picture.
    Reel& show(const PictureSample& picture) {
        pictures_.push_back(picture);
        return *this;
    }

    /// Appends `count` pictures, each made from its number.
    Reel& show(int count, const std::function<PictureSample(int)>& make) {
        for (int i = 0; i < count; ++i)
            show(make(i));
        return *this;
    }

    /// Appends the same picture `count` times.
    Reel& hold(int count, const PictureSample& picture) {
        return show(count, [&](int) { return picture; });
    }

    /// Appends a camera that drifts slowly over a scenery.
    Reel& drift(int count, const Scenery& scenery) {
        return show(count, [&](int i) { return scenery.seenFrom(40 + 0.7 * i, 20 + 0.2 * i); });
    }

    /// Appends `count` mixes between two pictures, without the two themselves.
    Reel& dissolve(int count, const PictureSample& from, const PictureSample& to) {
        return show(count, [&](int i) { return mixed(from, to, (i + 1.0) / (count + 1.0)); });
    }

    std::size_t size() const { return pictures_.size(); }

    std::int64_t positionOf(std::size_t frame) const {
        return std::llround(static_cast<double>(frame) * 1e7 / rate_);
    }

    FootageRecord analyse(double threshold = 3.0) const {
        SceneAnalysis analysis(threshold);
        for (std::size_t i = 0; i < pictures_.size(); ++i) {
            PictureSample picture = pictures_[i];
            picture.positionTicks = positionOf(i);
            analysis.add(featuresOf(picture));
        }
        return analysis.finish(positionOf(pictures_.size()));
    }

    /// Returns the frames at which scenes after the first one begin.
    std::vector<std::size_t> boundaries(double threshold = 3.0) const {
        std::vector<std::size_t> frames;
        for (const KOR::TickRange& scene : analyse(threshold).scenes) {
            if (scene.begin == 0) continue;
            frames.push_back(static_cast<std::size_t>(
                std::lround(static_cast<double>(scene.begin) * rate_ / 1e7)));
        }
        return frames;
    }

private:
    double rate_;
    std::vector<PictureSample> pictures_;
};

}  // namespace reference_host::scenes
