#include "reference_host/scenes/SceneAnalysis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace reference_host::scenes {
namespace {

constexpr double defaultThreshold = 3.0;
/// A change below this is never a cut, however still its neighbours are.
constexpr double floorOfChange = 4.0;

using Thumbnail = std::array<std::uint8_t, chromaWidthPx * chromaHeightPx>;

Thumbnail thumbnailOf(const PictureSample& picture) {
    constexpr std::size_t factor = lumaWidthPx / chromaWidthPx;
    Thumbnail thumbnail{};
    for (std::size_t y = 0; y < chromaHeightPx; ++y) {
        for (std::size_t x = 0; x < chromaWidthPx; ++x) {
            unsigned sum = 0;
            for (std::size_t dy = 0; dy < factor; ++dy)
                for (std::size_t dx = 0; dx < factor; ++dx)
                    sum += picture.luma[(y * factor + dy) * lumaWidthPx + x * factor + dx];
            thumbnail[y * chromaWidthPx + x] = static_cast<std::uint8_t>(sum / (factor * factor));
        }
    }
    return thumbnail;
}

double differenceOf(const Thumbnail& a, const Thumbnail& b) {
    unsigned sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += static_cast<unsigned>(std::abs(a[i] - b[i]));
    return static_cast<double>(sum) / static_cast<double>(a.size());
}

double sharpnessOf(const PictureSample& picture) {
    double sum = 0;
    for (std::size_t y = 1; y + 1 < lumaHeightPx; ++y) {
        for (std::size_t x = 1; x + 1 < lumaWidthPx; ++x) {
            const std::size_t at = y * lumaWidthPx + x;
            const int laplacian = 4 * picture.luma[at] - picture.luma[at - 1] -
                                  picture.luma[at + 1] - picture.luma[at - lumaWidthPx] -
                                  picture.luma[at + lumaWidthPx];
            sum += laplacian * laplacian;
        }
    }
    return std::sqrt(sum / static_cast<double>(picture.luma.size()));
}

}  // namespace

class SceneAnalysis::Pipeline {
public:
    explicit Pipeline(double threshold)
        : threshold_(std::isfinite(threshold) && threshold > 0 ? threshold : defaultThreshold) {}

    void add(const PictureSample& picture) {
        auto& frames = record_.frames;
        if (picture.positionTicks < 0) return;
        if (!frames.empty() && picture.positionTicks <= frames.back().positionTicks) return;
        const Thumbnail thumbnail = thumbnailOf(picture);
        const double change = frames.empty() ? 0 : differenceOf(previous_, thumbnail);
        frames.push_back({picture.positionTicks, static_cast<float>(sharpnessOf(picture)),
                          static_cast<float>(change), false});
        previous_ = thumbnail;
    }

    FootageRecord finish(std::int64_t durationTicks) {
        record_.durationTicks = std::max<std::int64_t>(0, durationTicks);
        std::int64_t begin = 0;
        for (std::size_t i = 1; i < record_.frames.size(); ++i) {
            const std::int64_t position = record_.frames[i].positionTicks;
            if (!isCut(i) || position <= begin || position >= record_.durationTicks) continue;
            record_.scenes.push_back({begin, position});
            begin = position;
        }
        if (begin < record_.durationTicks) record_.scenes.push_back({begin, record_.durationTicks});
        return std::move(record_);
    }

private:
    bool isCut(std::size_t index) const {
        constexpr std::size_t reach = 5;
        const auto& frames = record_.frames;
        double sum = 0;
        std::size_t count = 0;
        const std::size_t last = std::min(frames.size() - 1, index + reach);
        for (std::size_t i = std::max<std::size_t>(1, index - std::min(index, reach)); i <= last;
             ++i) {
            if (i == index) continue;
            sum += frames[i].change;
            ++count;
        }
        const double around = count > 0 ? sum / static_cast<double>(count) : 0;
        return frames[index].change >= threshold_ * around && frames[index].change >= floorOfChange;
    }

    double threshold_;
    Thumbnail previous_{};
    FootageRecord record_;
};

SceneAnalysis::SceneAnalysis(double threshold) : pipeline_(std::make_unique<Pipeline>(threshold)) {}
SceneAnalysis::SceneAnalysis(SceneAnalysis&&) noexcept = default;
SceneAnalysis& SceneAnalysis::operator=(SceneAnalysis&&) noexcept = default;
SceneAnalysis::~SceneAnalysis() = default;

void SceneAnalysis::add(const PictureSample& picture) {
    pipeline_->add(picture);
}

FootageRecord SceneAnalysis::finish(std::int64_t durationTicks) {
    return pipeline_->finish(durationTicks);
}

}  // namespace reference_host::scenes
