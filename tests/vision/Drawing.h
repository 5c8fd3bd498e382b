#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

#include "reference_host/vision/Picture.h"

namespace reference_host::vision {

/// A grey picture that is drawn into.
class Drawing {
public:
    Drawing(int widthPx, int heightPx, double level) {
        picture_.widthPx = widthPx;
        picture_.heightPx = heightPx;
        picture_.bgr.assign(
            static_cast<std::size_t>(widthPx) * static_cast<std::size_t>(heightPx) * 3,
            static_cast<std::uint8_t>(level));
    }

    /// Sets every pixel to what `levelAt` (x, y) gives, 0 to 255.
    template <typename LevelAt>
    Drawing& fill(LevelAt levelAt) {
        for (int y = 0; y < picture_.heightPx; ++y) {
            for (int x = 0; x < picture_.widthPx; ++x)
                set(x, y, levelAt(x, y));
        }
        return *this;
    }

    /// Lays an ellipse over the picture, the rim of which fades out over `softPx`.
    Drawing& ellipse(double centreX, double centreY, double radiusX, double radiusY, double level,
                     double softPx) {
        return fill([&](int x, int y) {
            const double away = std::hypot((x - centreX) / radiusX, (y - centreY) / radiusY);
            const double cover =
                std::clamp((1 - away) * std::min(radiusX, radiusY) / softPx, 0.0, 1.0);
            return at(x, y) + (level - at(x, y)) * cover;
        });
    }

    /// Lays a face over the picture, seen from the front and lit from above, `sizePx` from brow to
    /// chin and from cheek to cheek.
    Drawing& face(double centreX, double centreY, double sizePx) {
        const double s = sizePx / 100;
        const auto part = [&](double x, double y, double radiusX, double radiusY, double level,
                              double soft) {
            ellipse(centreX + x * s, centreY + y * s, radiusX * s, radiusY * s, level, soft * s);
        };
        part(0, -10, 64, 82, 50, 6);
        part(0, 85, 30, 50, 120, 10);
        part(0, 5, 54, 70, 190, 16);
        part(0, -38, 40, 22, 210, 20);
        for (const double side : {-1.0, 1.0}) {
            part(side * 24, -8, 20, 13, 120, 10);
            part(side * 24, -23, 18, 5, 55, 4);
            part(side * 24, -7, 12, 6, 215, 3);
            part(side * 24, -7, 6, 6, 30, 2);
            part(side * 30, 18, 14, 12, 205, 12);
            part(side * 8, 21, 5, 4, 90, 3);
        }
        part(0, 5, 6, 22, 215, 5);
        part(0, 27, 14, 4, 140, 4);
        part(0, 42, 24, 7, 100, 4);
        part(0, 42, 20, 2.5, 50, 2);
        part(0, 54, 16, 4, 150, 4);
        return *this;
    }

    Drawing& noise(double deviation, std::uint32_t seed) {
        std::mt19937 random(seed);
        std::normal_distribution<double> grain(0, deviation);
        return fill([&](int x, int y) { return at(x, y) + grain(random); });
    }

    /// Averages each pixel with its neighbours up to `reachPx` away.
    Drawing& blur(int reachPx) {
        const Drawing sharp = *this;
        return fill([&](int x, int y) {
            double sum = 0;
            int count = 0;
            for (int v = y - reachPx; v <= y + reachPx; ++v) {
                for (int u = x - reachPx; u <= x + reachPx; ++u) {
                    if (u < 0 || v < 0 || u >= picture_.widthPx || v >= picture_.heightPx) continue;
                    sum += sharp.at(u, v);
                    ++count;
                }
            }
            return sum / count;
        });
    }

    double at(int x, int y) const { return picture_.bgr[offset(x, y)]; }

    const Picture& picture() const { return picture_; }

private:
    std::size_t offset(int x, int y) const {
        return 3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture_.widthPx) +
                    static_cast<std::size_t>(x));
    }

    void set(int x, int y, double level) {
        const auto value = static_cast<std::uint8_t>(std::clamp(std::round(level), 0.0, 255.0));
        std::fill_n(picture_.bgr.begin() + static_cast<std::ptrdiff_t>(offset(x, y)), 3, value);
    }

    Picture picture_;
};

}  // namespace reference_host::vision
