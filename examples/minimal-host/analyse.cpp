#include "analyse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <stdexcept>

namespace minimal_host {
namespace {

using Ranges = std::vector<KOR::TickRange>;

/// How much one picture differs from the next: never less than what grain does.
double changeBetween(const Picture& before, const Picture& after) {
    double sum = 0;
    for (std::size_t i = 0; i < after.size(); ++i)
        sum += std::abs(after[i] - before[i]);
    return std::max(1.0, sum / static_cast<double>(after.size()));
}

/// Begins a scene where a change is so many times as large as those beside it.
Ranges scenesIn(const Clip& clip, const KOR::SceneParameters& parameters,
                const std::stop_token& stop, host_kit::ProgressMeter& progress) {
    std::vector<double> changes{1.0};
    Picture last = clip.read(0);
    for (std::int64_t i = 1; i < clip.pictures() && !stop.stop_requested(); ++i) {
        progress.report(static_cast<std::int32_t>(90 * i / clip.pictures()));
        Picture next = clip.read(i);
        changes.push_back(changeBetween(last, next));
        last = std::move(next);
    }
    changes.push_back(1.0);
    const double ratio = parameters.threshold / parameters.sensitivity;
    Ranges scenes{{0, clip.durationTicks()}};
    for (std::size_t i = 1; i + 1 < changes.size(); ++i) {
        if (changes[i] <= ratio * std::max(changes[i - 1], changes[i + 1])) continue;
        scenes.back().end = clip.positionOf(static_cast<std::int64_t>(i));
        scenes.push_back({scenes.back().end, clip.durationTicks()});
    }
    return scenes;
}

/// Chooses pictures at even distances, clear of the margins; the middle one where these leave none.
void chooseWithin(const KOR::TickRange& range, const Clip& clip,
                  const KOR::KeyFrameParameters& wanted, std::set<std::int64_t>& chosen) {
    const std::int64_t begin = std::max<std::int64_t>(range.begin, 0);
    const std::int64_t end = std::min(range.end, clip.durationTicks());
    std::int64_t first = clip.firstFrom(begin);
    std::int64_t last = clip.firstFrom(end);
    if (begin >= end || first >= last) return;
    const std::int64_t margins = std::int64_t{wanted.marginFramesBegin} + wanted.marginFramesEnd;
    const bool hasRoom = last - first > margins;
    first = hasRoom ? first + wanted.marginFramesBegin : (first + last) / 2;
    last = hasRoom ? last - wanted.marginFramesEnd : first + 1;
    const std::int64_t stretch = wanted.secondsPerKeyFrame * KOR::ticksPerSecond;
    const std::int64_t count =
        std::min({(end - begin - 1) / stretch + 1, last - first, std::int64_t{wanted.maxPerScene}});
    for (std::int64_t i = 0; i < count; ++i)
        chosen.insert(first + (2 * i + 1) * (last - first) / (2 * count));
}

std::vector<std::int64_t> keyFramesIn(const Ranges& ranges, const Clip& clip,
                                      const KOR::KeyFrameParameters& wanted) {
    std::set<std::int64_t> chosen;
    for (const KOR::TickRange& range : ranges)
        chooseWithin(range, clip, wanted, chosen);
    std::vector<std::int64_t> positions;
    for (const std::int64_t picture : chosen)
        positions.push_back(clip.positionOf(picture));
    return positions;
}

/// In bits: 0 where there is no picture.
double entropyOf(const Picture& pixels) {
    std::array<double, 256> counts{};
    for (const unsigned char pixel : pixels)
        counts[pixel] += 1;
    double bits = 0;
    for (const double count : counts) {
        const double share = count / static_cast<double>(pixels.size());
        if (count > 0) bits -= share * std::log2(share);
    }
    return bits;
}

/// The mean square of the steps from pixel to pixel.
double sharpnessOf(const Picture& pixels) {
    double sum = 0;
    for (std::size_t i = 1; i < pixels.size(); ++i)
        sum += std::pow(pixels[i] - pixels[i - 1], 2);
    return pixels.empty() ? 0 : sum / static_cast<double>(pixels.size());
}

/// Returns the picture that is shown at `ticks`; none where there is no such one.
Picture pictureAt(std::int64_t ticks, const Clip& clip) {
    try {
        return clip.read(ticks < 0 ? -1 : clip.firstFrom(ticks + 1) - 1);
    } catch (const std::runtime_error&) {
        return {};
    }
}

void lookAt(std::int64_t position, const Clip& clip, const host_kit::AnalysisRequest& request,
            host_kit::AnalysisResults& results) {
    const Picture picture = pictureAt(position, clip);
    KOR::FaceDetectFrame noFaces{};  // this host cannot find any
    noFaces.pos = position;
    if (request.wantsFaces) results.faces.push_back(noFaces);
    if (request.wantsEntropy) results.entropies.push_back({position, entropyOf(picture)});
    if (request.wantsBlur) results.blurs.push_back({position, sharpnessOf(picture)});
}

}  // namespace

host_kit::AnalysisResults analyse(const Clip& clip, const host_kit::AnalysisRequest& request,
                                  const std::stop_token& stop, host_kit::ProgressMeter& progress) {
    host_kit::AnalysisResults results;
    Ranges ranges = request.sceneRanges;
    if (request.wantsScenes) {
        ranges = results.scenes = scenesIn(clip, request.sceneParameters, stop, progress);
    }
    if (ranges.empty()) ranges = {{0, clip.durationTicks()}};
    if (request.wantsKeyFrames) {
        results.keyFramePositionsTicks = keyFramesIn(ranges, clip, request.keyFrameParameters);
    }
    const std::vector<std::int64_t> still{0};
    for (const std::int64_t position : clip.isVideo() ? request.positionsTicks : still) {
        if (stop.stop_requested()) break;
        lookAt(position, clip, request, results);
    }
    return results;
}

}  // namespace minimal_host
