#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "reference_host/scenes/Difference.h"

namespace reference_host::scenes {

/// The difference of two pictures as its description says it, without any short cut.
class PlainDifference {
public:
    static Difference between(const Thumbnail& before, const Thumbnail& after) {
        const Difference shape = shapeOf(before, after);
        const int tones = distance(before.lumaTones, after.lumaTones) +
                          distance(before.uTones, after.uTones) +
                          distance(before.vTones, after.vTones);
        const float tone = static_cast<float>(tones) / static_cast<float>(thumbnailPixels);
        return {shape.overall + std::min(shape.overall, tone),
                shape.widespread + std::min(shape.widespread, tone)};
    }

private:
    static constexpr int blockWidth = 16;
    static constexpr int blockHeight = 9;
    static constexpr int width = thumbnailWidthPx;
    static constexpr int height = thumbnailHeightPx;

    static std::uint8_t at(const Thumbnail::Plane& plane, int x, int y) {
        return plane[static_cast<std::size_t>(y * width + x)];
    }

    static int distance(const Thumbnail::Plane& a, const Thumbnail::Plane& b) {
        int sum = 0;
        for (std::size_t i = 0; i < a.size(); ++i)
            sum += std::abs(a[i] - b[i]);
        return sum;
    }

    static int distance(const Thumbnail::Plane& a, int ax, int ay, const Thumbnail::Plane& b,
                        int bx, int by) {
        int sum = 0;
        for (int y = 0; y < blockHeight; ++y) {
            for (int x = 0; x < blockWidth; ++x)
                sum += std::abs(at(a, ax + x, ay + y) - at(b, bx + x, by + y));
        }
        return sum;
    }

    /// The first of the places that fit best, in rows, counts.
    static int best(const Thumbnail& in, const Thumbnail& of, int x0, int y0) {
        int least = std::numeric_limits<int>::max();
        int bestX = 0;
        int bestY = 0;
        for (int y = std::max(0, y0 - 4); y <= std::min(height - blockHeight, y0 + 4); ++y) {
            for (int x = std::max(0, x0 - 6); x <= std::min(width - blockWidth, x0 + 6); ++x) {
                const int here = distance(of.luma, x0, y0, in.luma, x, y);
                if (here >= least) continue;
                least = here;
                bestX = x;
                bestY = y;
            }
        }
        return least + distance(of.u, x0, y0, in.u, bestX, bestY) +
               distance(of.v, x0, y0, in.v, bestX, bestY);
    }

    static bool isBlack(const Thumbnail& picture, int x0, int y0) {
        for (int y = y0; y < y0 + blockHeight; ++y) {
            for (int x = x0; x < x0 + blockWidth; ++x) {
                if (at(picture.luma, x, y) > 12) return false;
            }
        }
        return true;
    }

    static Difference shapeOf(const Thumbnail& before, const Thumbnail& after) {
        std::vector<int> blocks;
        for (int y = 0; y < height; y += blockHeight) {
            for (int x = 0; x < width; x += blockWidth) {
                if (isBlack(before, x, y) && isBlack(after, x, y)) continue;
                blocks.push_back(std::min(best(before, after, x, y), best(after, before, x, y)));
            }
        }
        if (blocks.empty()) return {};
        std::sort(blocks.begin(), blocks.end());
        int overall = 0;
        int widespread = 0;
        for (const int block : blocks) {
            overall += block;
            widespread += std::min(block, 2 * blocks[blocks.size() / 2]);
        }
        const auto pixels = static_cast<float>(blocks.size() * blockWidth * blockHeight);
        return {static_cast<float>(overall) / pixels, static_cast<float>(widespread) / pixels};
    }
};

}  // namespace reference_host::scenes
