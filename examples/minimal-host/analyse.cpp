#include "analyse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace minimal_host {
namespace {

/// Two pictures of one view differ by so much where nothing moves, for their grain.
constexpr double grain = 1.0;

double changeBetween(const Picture& before, const Picture& after) {
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < after.size(); ++i)
        sum += std::abs(after[i] - before[i]);
    return static_cast<double>(sum) / static_cast<double>(after.size());
}

/// A picture begins a scene where it changes `ratio` times as much as any of those near it.
bool standsOut(const std::vector<double>& changes, std::size_t picture, double ratio) {
    double near = grain;
    for (std::size_t i = picture < 3 ? 1 : picture - 2; i < changes.size() && i <= picture + 2; ++i)
        if (i != picture) near = std::max(near, changes[i]);
    return changes[picture] > ratio * near;
}

double entropyOf(const Picture& pixels) {
    std::array<double, 256> counts{};
    for (const std::uint8_t pixel : pixels)
        ++counts[pixel];
    double bits = 0;
    for (const double count : counts) {
        const double share = count / static_cast<double>(pixels.size());
        if (count > 0) bits -= share * std::log2(share);
    }
    return bits;
}

/// The variance of the Laplacian.
double sharpnessOf(const Picture& pixels, std::size_t width) {
    double count = 0, sum = 0, squares = 0;
    for (std::size_t i = width + 1; i + width + 1 < pixels.size(); ++i) {
        if (i % width == 0 || i % width == width - 1) continue;
        const double value =
            pixels[i - 1] + pixels[i + 1] + pixels[i - width] + pixels[i + width] - 4 * pixels[i];
        count += 1;
        sum += value;
        squares += value * value;
    }
    return count == 0 ? 0 : squares / count - sum / count * (sum / count);
}

class Analysis {
public:
    Analysis(const Work& work, const std::function<void(std::int32_t)>& report)
        : work_(work), clip_(*work.clip), report_(report) {}

    Results run() {
        clip_.checkUnchanged();
        std::vector<KOR::TickRange> ranges = work_.ranges;
        if (ranges.empty()) ranges = {{0, clip_.duration()}};
        if (wants(KOR::analysisTypeScene)) ranges = findScenes();
        if (wants(KOR::analysisTypeKeyFrame)) chooseKeyFrames(ranges);
        if (wants(KOR::analysisTypeFace) || wants(KOR::analysisTypeEntropy) ||
            wants(KOR::analysisTypeBlur))
            lookAtPositions();
        clip_.checkUnchanged();
        report_(100);
        return results_;
    }

private:
    bool wants(std::int32_t type) const { return work_.types.contains(type); }

    template <typename Element>
    void add(std::int32_t kind, const Element& element) {
        if (wants(kind))
            results_[kind].emplace_back(reinterpret_cast<const char*>(&element), sizeof element);
    }

    std::vector<KOR::TickRange> findScenes() {
        const double ratio = work_.scene.threshold / work_.scene.sensitivity;
        const std::int64_t share = wants(KOR::analysisTypeKeyFrame) ? 50 : 99;
        std::vector<double> changes;
        Picture last;
        for (std::int64_t i = 0; i < clip_.count; ++i) {
            report_(static_cast<std::int32_t>(share * i / clip_.count));
            Picture next = clip_.read(i);
            changes.push_back(i == 0 ? 0 : changeBetween(last, next));
            last = std::move(next);
        }
        std::vector<KOR::TickRange> scenes{{0, clip_.duration()}};
        for (std::size_t i = 1; i < changes.size(); ++i) {
            if (!standsOut(changes, i, ratio)) continue;
            scenes.back().end = clip_.position(static_cast<std::int64_t>(i));
            scenes.push_back({scenes.back().end, clip_.duration()});
        }
        for (const KOR::TickRange& scene : scenes)
            add(KOR::analysisTypeScene, scene);
        return scenes;
    }
    void chooseKeyFrames(const std::vector<KOR::TickRange>& ranges) {
        std::set<std::int64_t> chosen;
        const auto inside = [this](std::int64_t ticks) {
            return std::clamp<std::int64_t>(ticks, 0, clip_.duration());
        };
        for (const KOR::TickRange& range : ranges)
            chooseWithin(inside(range.begin), inside(range.end), chosen);
        for (const std::int64_t picture : chosen)
            add(KOR::analysisTypeKeyFrame, clip_.position(picture));
    }
    void chooseWithin(std::int64_t begin, std::int64_t end, std::set<std::int64_t>& chosen) {
        const KOR::KeyFrameParameters& wanted = work_.keyFrame;
        std::int64_t first = clip_.firstFrom(begin);
        std::int64_t last = clip_.firstFrom(end);
        if (first >= last) return;
        const std::int64_t margin = wanted.marginFramesBegin;
        if (last - first > margin + wanted.marginFramesEnd) {
            first += margin;
            last -= wanted.marginFramesEnd;
        } else {  // the margins leave nothing
            first = (first + last) / 2;
            last = first + 1;
        }
        const std::int64_t stretch = wanted.secondsPerKeyFrame * KOR::ticksPerSecond;
        const std::int64_t started = (end - begin - 1) / stretch + 1;
        const std::int64_t parts =
            std::min({started, last - first, std::int64_t{wanted.maxPerScene}});
        for (std::int64_t i = 0; i < parts; ++i)
            chosen.insert(sharpest(first + (last - first) * i / parts,
                                   first + (last - first) * (i + 1) / parts));
    }
    /// Compares candidates that are spread over the pictures from `first` to before `last`.
    std::int64_t sharpest(std::int64_t first, std::int64_t last) {
        const auto candidates =
            std::min<std::int64_t>(work_.keyFrame.candidatesPerKeyFrame, last - first);
        const std::int64_t begin = wants(KOR::analysisTypeScene) ? 50 : 0;
        std::int64_t best = first;
        double bestSharpness = -1;
        for (std::int64_t i = 0; i < candidates; ++i) {
            const std::int64_t picture = first + (2 * i + 1) * (last - first) / (2 * candidates);
            report_(static_cast<std::int32_t>(begin + (99 - begin) * picture / clip_.count));
            const double sharpness = sharpnessOf(clip_.read(picture), clip_.width);
            if (sharpness > bestSharpness) best = picture;
            bestSharpness = std::max(bestSharpness, sharpness);
        }
        return best;
    }
    void lookAtPositions() {
        const std::vector<std::int64_t> still{0};
        const std::vector<std::int64_t>& positions = clip_.isVideo ? work_.positions : still;
        for (std::size_t i = 0; i < positions.size(); ++i) {
            report_(static_cast<std::int32_t>(99 * i / positions.size()));
            Picture picture;
            try {
                picture = clip_.readAt(positions[i]);
            } catch (const std::runtime_error&) {
                // It has its element all the same.
            }
            KOR::FaceDetectFrame noFaces{};  // this host cannot find any
            noFaces.pos = positions[i];
            add(KOR::analysisTypeFace, noFaces);
            add(KOR::analysisTypeEntropy, KOR::EntropySample{positions[i], entropyOf(picture)});
            add(KOR::analysisTypeBlur,
                KOR::BlurSample{positions[i], sharpnessOf(picture, clip_.width)});
        }
    }

    const Work& work_;
    const Clip& clip_;
    const std::function<void(std::int32_t)>& report_;
    Results results_;
};

}  // namespace

Results analyse(const Work& work, const std::function<void(std::int32_t)>& report) {
    if (!work.clip) throw std::runtime_error("there is no source that can be read");
    return Analysis(work, report).run();
}

}  // namespace minimal_host
