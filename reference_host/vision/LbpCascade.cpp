#include "reference_host/vision/LbpCascade.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include <opencv2/imgproc.hpp>

namespace reference_host::vision {
namespace {

/// A value of each of eight neighbouring windows: they are examined together.
using Lanes = std::uint16_t __attribute__((vector_size(16)));
constexpr int laneCount = 8;

/// From here on, windows that are left are quicker examined together than one by one.
constexpr int leastTogether = 2;

/// Sums of pixels are kept modulo 65,536; that of a box is exact as long as it is below.
constexpr int maxBoxPixels = 65535 / 255;

/// What rounding may have added to a threshold when the cascade was stored.
constexpr float thresholdSlack = 1e-5F;

/// Cascades are trained for windows of 20 to 50 pixels.
constexpr int maxSidePx = 256;

/// Where the corners of the nine boxes of a feature are, four by four, from a window's first value.
using Corners = std::array<int, 16>;

/// The sums of all pixels above and to the left of each place of a picture. Windows begin at every
/// `step`th column; the columns are stored so that the values of neighbouring windows are
/// neighbours.
class Sums {
public:
    Sums(const cv::Mat& picture, int step)
        : step_(step),
          columns_((picture.cols + step) / step),
          values_(static_cast<std::size_t>(columns_ * step * (picture.rows + 1) + laneCount)) {
        std::vector<std::uint16_t> sums(static_cast<std::size_t>(picture.cols) + 1);
        for (int y = 0; y < picture.rows; ++y) {
            const auto* pixels = picture.ptr<std::uint8_t>(y);
            std::uint16_t ofRow = 0;
            for (std::size_t x = 1; x < sums.size(); ++x) {
                ofRow = static_cast<std::uint16_t>(ofRow + pixels[x - 1]);
                sums[x] = static_cast<std::uint16_t>(sums[x] + ofRow);
            }
            store(sums, y + 1);
        }
    }

    /// The first value of the first window of a row.
    const std::uint16_t* row(int y) const {
        return values_.data() + static_cast<std::ptrdiff_t>(stride()) * y;
    }

    Corners cornersOf(const cv::Rect& feature) const {
        Corners corners{};
        for (int i = 0; i < 16; ++i) {
            const int x = feature.x + i % 4 * feature.width;
            const int y = feature.y + i / 4 * feature.height;
            corners[static_cast<std::size_t>(i)] = y * stride() + x % step_ * columns_ + x / step_;
        }
        return corners;
    }

private:
    int stride() const { return columns_ * step_; }

    void store(const std::vector<std::uint16_t>& sums, int y) {
        std::uint16_t* const to = values_.data() + static_cast<std::ptrdiff_t>(stride()) * y;
        const auto step = static_cast<std::size_t>(step_);
        for (std::size_t first = 0; first < step; ++first) {
            std::uint16_t* column = to + first * static_cast<std::size_t>(columns_);
            for (std::size_t x = first; x < sums.size(); x += step)
                *column++ = sums[x];
        }
    }

    int step_;
    /// Of those that are stored beside each other.
    int columns_;
    /// Behind the last one, there is room for windows that are examined with it for nothing.
    std::vector<std::uint16_t> values_;
};

template <typename Value>
Value valueAt(const std::uint16_t* place) {
    Value value;
    std::memcpy(&value, place, sizeof(value));
    return value;
}

std::uint16_t bitWhere(bool isSet, std::uint16_t bit) {
    return isSet ? bit : std::uint16_t{0};
}

template <typename Mask>
Lanes bitWhere(Mask isSet, std::uint16_t bit) {
    return (Lanes)isSet & bit;
}

/// Returns the outcome of a pattern, 0 to 255, for the window at `place`, or for that and those
/// behind it.
template <typename Value>
Value outcomeAt(const std::uint16_t* place, const Corners& corners) {
    std::array<Value, 12> strips;
    for (std::size_t i = 0; i < strips.size(); ++i) {
        strips[i] = static_cast<Value>(valueAt<Value>(place + corners[i + 4]) -
                                       valueAt<Value>(place + corners[i]));
    }
    const auto box = [&strips](std::size_t x, std::size_t y) {
        return static_cast<Value>(strips[y * 4 + x + 1] - strips[y * 4 + x]);
    };
    const Value middle = box(1, 1);
    return static_cast<Value>(
        bitWhere(box(0, 0) >= middle, 128) | bitWhere(box(1, 0) >= middle, 64) |
        bitWhere(box(2, 0) >= middle, 32) | bitWhere(box(2, 1) >= middle, 16) |
        bitWhere(box(2, 2) >= middle, 8) | bitWhere(box(1, 2) >= middle, 4) |
        bitWhere(box(0, 2) >= middle, 2) | bitWhere(box(0, 1) >= middle, 1));
}

}  // namespace

/// Looks for windows of one size.
class LbpSearch {
public:
    /// `picture` is scaled so that the size that is looked for is the cascade's own.
    LbpSearch(const LbpCascade& cascade, const cv::Mat& picture, int step)
        : stages_(cascade.stages_),
          step_(step),
          rows_(std::max(0, picture.rows - cascade.sidePx_ + 1)),
          columns_((std::max(0, picture.cols - cascade.sidePx_ + 1) + step - 1) / step),
          sums_(picture, step),
          verdicts_(static_cast<std::size_t>(columns_)) {
        for (const cv::Rect& feature : cascade.features_)
            corners_.push_back(sums_.cornersOf(feature));
    }

    /// Calls `found` with the corner of each window that passes all stages. After one that fails
    /// the first stage, the next one in its row is passed over.
    template <typename Found>
    void search(const Found& found) {
        for (int y = 0; y < rows_; y += step_) {
            examineRow(y);
            for (int column = 0; column < columns_; ++column) {
                const Verdict verdict = verdicts_[static_cast<std::size_t>(column)];
                if (verdict == Verdict::passed) found(cv::Point(column * step_, y));
                if (verdict == Verdict::failedAtOnce) ++column;
            }
        }
    }

private:
    enum class Verdict : std::uint8_t { failedAtOnce, failed, passed };
    using Stage = LbpCascade::Stage;

    void examineRow(int y) {
        for (int column = 0; column < columns_; column += laneCount) {
            const std::uint16_t* const place = sums_.row(y) + column;
            const int count = std::min(laneCount, columns_ - column);
            Verdict* const verdicts = verdicts_.data() + column;
            std::uint32_t left = (1U << count) - 1;
            std::size_t stage = 0;
            while (stage < stages_.size() && (stage == 0 || std::popcount(left) >= leastTogether)) {
                left &= passing(stages_[stage], place);
                if (stage++ > 0) continue;
                for (int i = 0; i < count; ++i)
                    verdicts[i] = (left >> i & 1U) != 0 ? Verdict::failed : Verdict::failedAtOnce;
            }
            for (; left != 0; left &= left - 1) {
                const int i = std::countr_zero(left);
                if (passesFrom(stage, place + i)) verdicts[i] = Verdict::passed;
            }
        }
    }

    /// Returns which of the windows from `place` on pass the stage, as bits.
    std::uint32_t passing(const Stage& stage, const std::uint16_t* place) const {
        std::array<float, laneCount> votes{};
        for (const LbpCascade::Pattern& pattern : stage.patterns) {
            std::array<std::uint16_t, laneCount> outcomes;
            const auto lanes = outcomeAt<Lanes>(place, corners_[pattern.feature]);
            std::memcpy(outcomes.data(), &lanes, sizeof(lanes));
            for (std::size_t i = 0; i < votes.size(); ++i)
                votes[i] += pattern.votes[outcomes[i]];
        }
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < votes.size(); ++i)
            bits |= std::uint32_t{votes[i] >= stage.threshold} << i;
        return bits;
    }

    bool passesFrom(std::size_t first, const std::uint16_t* place) const {
        return std::all_of(
            stages_.begin() + static_cast<std::ptrdiff_t>(first), stages_.end(),
            [&](const Stage& stage) {
                float votes = 0;
                for (const LbpCascade::Pattern& pattern : stage.patterns)
                    votes +=
                        pattern.votes[outcomeAt<std::uint16_t>(place, corners_[pattern.feature])];
                return votes >= stage.threshold;
            });
    }

    const std::vector<Stage>& stages_;
    const int step_;
    /// How many windows there are below each other, not counting steps, and beside each other.
    const int rows_;
    const int columns_;
    const Sums sums_;
    std::vector<Corners> corners_;
    std::vector<Verdict> verdicts_;
};

namespace {

void refuseUnless(bool isRight) {
    if (!isRight) throw std::runtime_error("this is no cascade of local binary patterns");
}

}  // namespace

LbpCascade::LbpCascade(const std::filesystem::path& file) {
    const cv::FileStorage storage(file.string(), cv::FileStorage::READ);
    refuseUnless(storage.isOpened());
    const cv::FileNode cascade = storage.getFirstTopLevelNode();
    refuseUnless(cascade.isMap() && cascade["featureType"].isString() &&
                 static_cast<std::string>(cascade["featureType"]) == "LBP");
    sidePx_ = static_cast<int>(cascade["width"]);
    refuseUnless(sidePx_ > 0 && sidePx_ <= maxSidePx &&
                 sidePx_ == static_cast<int>(cascade["height"]));
    readFeatures(cascade["features"]);
    readStages(cascade["stages"]);
}

void LbpCascade::readFeatures(const cv::FileNode& list) {
    const auto fits = [this](int first, int length) {
        return first >= 0 && first < sidePx_ && length > 0 && length <= (sidePx_ - first) / 3;
    };
    for (const cv::FileNode& node : list) {
        cv::Rect box;
        node["rect"] >> box;
        refuseUnless(fits(box.x, box.width) && fits(box.y, box.height) &&
                     box.area() <= maxBoxPixels);
        features_.push_back(box);
    }
}

void LbpCascade::readStages(const cv::FileNode& list) {
    for (const cv::FileNode& node : list) {
        Stage& stage = stages_.emplace_back();
        stage.threshold = static_cast<float>(node["stageThreshold"]) - thresholdSlack;
        for (const cv::FileNode& tree : node["weakClassifiers"]) {
            // A tree of one node: its two leaves, its feature, and a bit for each outcome.
            const cv::FileNode nodes = tree["internalNodes"];
            const cv::FileNode leaves = tree["leafValues"];
            refuseUnless(nodes.size() == 11 && leaves.size() == 2);
            Pattern& pattern = stage.patterns.emplace_back();
            const int feature = static_cast<int>(nodes[2]);
            refuseUnless(feature >= 0 && static_cast<std::size_t>(feature) < features_.size());
            pattern.feature = static_cast<std::size_t>(feature);
            const std::array<float, 2> votes{static_cast<float>(leaves[1]),
                                             static_cast<float>(leaves[0])};
            for (int outcome = 0; outcome < 256; ++outcome) {
                const auto bits =
                    static_cast<std::uint32_t>(static_cast<int>(nodes[3 + outcome / 32]));
                pattern.votes[static_cast<std::size_t>(outcome)] = votes[bits >> outcome % 32 & 1U];
            }
        }
        refuseUnless(!stage.patterns.empty());
    }
    refuseUnless(!stages_.empty());
}

std::vector<cv::Rect> LbpCascade::windows(const cv::Mat& picture, double sizeStep,
                                          int smallestPx) const {
    std::vector<cv::Rect> windows;
    cv::Mat scaled;
    for (double exact = 1;; exact *= sizeStep) {
        const int size = cvRound(sidePx_ * exact);
        if (size > std::min(picture.cols, picture.rows)) return windows;
        if (size < smallestPx) continue;
        const auto scale = static_cast<float>(exact);
        const auto smaller = [scale](int px) { return cvRound(static_cast<float>(px) / scale); };
        const auto larger = [scale](int px) { return cvRound(static_cast<float>(px) * scale); };
        cv::resize(picture, scaled, {smaller(picture.cols), smaller(picture.rows)}, 0, 0,
                   cv::INTER_LINEAR_EXACT);
        // Steps of 2 are as fine in pixels of the picture as those of 1 for larger windows.
        const int step = scale >= 2 ? 1 : 2;
        LbpSearch(*this, scaled, step).search([&](const cv::Point& corner) {
            windows.emplace_back(larger(corner.x), larger(corner.y), size, size);
        });
    }
}

}  // namespace reference_host::vision
