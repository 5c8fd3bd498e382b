#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "reference_host/scenes/PictureSample.h"

namespace reference_host::scenes {

/// A landscape of soft random spots in random colours, larger than a picture: each seed gives
/// another one, and a camera can move over it.
class Scenery {
public:
    explicit Scenery(std::uint32_t seed) : random_(seed * 2654435761U + 1) {
        const Lattice luma = lattice(16, 240);
        const Lattice u = lattice(64, 192);
        const Lattice v = lattice(64, 192);
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t x = 0; x < width; ++x) {
                luma_[y * width + x] = luma.at(x, y);
                u_[y * width + x] = u.at(x, y);
                v_[y * width + x] = v.at(x, y);
            }
        }
    }

    /// Returns what a camera sees whose left upper corner is at this place, in samples of luma;
    /// with a `zoom` above 1 it sees less, larger.
    PictureSample seenFrom(double left, double top, double zoom = 1) const {
        PictureSample picture{};
        for (std::size_t y = 0; y < lumaHeightPx; ++y) {
            for (std::size_t x = 0; x < lumaWidthPx; ++x) {
                picture.luma[y * lumaWidthPx + x] = luma_[place(left, top, zoom, x, y)];
            }
        }
        for (std::size_t y = 0; y < chromaHeightPx; ++y) {
            for (std::size_t x = 0; x < chromaWidthPx; ++x) {
                const std::size_t from = place(left, top, zoom, 4 * x + 2, 4 * y + 2);
                picture.u[y * chromaWidthPx + x] = u_[from];
                picture.v[y * chromaWidthPx + x] = v_[from];
            }
        }
        return picture;
    }

    /// Returns what a still camera sees.
    PictureSample picture() const { return seenFrom(40, 20); }

private:
    static constexpr std::size_t width = 512;
    static constexpr std::size_t height = 256;
    static constexpr std::size_t cell = 32;
    static constexpr std::size_t columns = width / cell + 2;
    static constexpr std::size_t rows = height / cell + 2;

    struct Lattice {
        std::array<double, columns * rows> values{};

        std::uint8_t at(std::size_t x, std::size_t y) const {
            const std::size_t i = (y / cell) * columns + x / cell;
            const double fx = static_cast<double>(x % cell) / cell;
            const double fy = static_cast<double>(y % cell) / cell;
            const double upper = values[i] * (1 - fx) + values[i + 1] * fx;
            const double lower = values[i + columns] * (1 - fx) + values[i + columns + 1] * fx;
            return static_cast<std::uint8_t>(upper * (1 - fy) + lower * fy);
        }
    };

    Lattice lattice(int lowest, int highest) {
        Lattice result;
        for (double& value : result.values)
            value = lowest + next() * (highest - lowest);
        return result;
    }

    double next() {
        random_ = random_ * 1664525U + 1013904223U;
        return static_cast<double>(random_ >> 8U) / static_cast<double>(1U << 24U);
    }

    static std::size_t place(double left, double top, double zoom, std::size_t x, std::size_t y) {
        const auto clamped = [](double at, std::size_t size) {
            return static_cast<std::size_t>(std::clamp(at, 0.0, static_cast<double>(size - 1)));
        };
        return clamped(top + static_cast<double>(y) / zoom, height) * width +
               clamped(left + static_cast<double>(x) / zoom, width);
    }

    std::uint32_t random_;
    std::vector<std::uint8_t> luma_ = std::vector<std::uint8_t>(width * height);
    std::vector<std::uint8_t> u_ = luma_;
    std::vector<std::uint8_t> v_ = luma_;
};

/// Returns a picture of one colour.
inline PictureSample plain(std::uint8_t luma, std::uint8_t u = 128, std::uint8_t v = 128) {
    PictureSample picture{};
    picture.luma.fill(luma);
    picture.u.fill(u);
    picture.v.fill(v);
    return picture;
}

/// Returns the mix of two pictures that holds the part `share` of the second.
inline PictureSample mixed(const PictureSample& a, const PictureSample& b, double share) {
    PictureSample picture = a;
    const auto mix = [share](auto& plane, const auto& other) {
        for (std::size_t i = 0; i < plane.size(); ++i) {
            plane[i] =
                static_cast<std::uint8_t>(std::lround(plane[i] * (1 - share) + other[i] * share));
        }
    };
    mix(picture.luma, b.luma);
    mix(picture.u, b.u);
    mix(picture.v, b.v);
    return picture;
}

/// Returns the picture in another light: brightness times `gain` plus `offset`.
inline PictureSample lit(PictureSample picture, double gain, double offset) {
    for (std::uint8_t& value : picture.luma) {
        value = static_cast<std::uint8_t>(std::clamp(value * gain + offset, 0.0, 255.0));
    }
    return picture;
}

/// Returns the picture with a rectangle of one colour over it, in samples of luma; it may reach
/// outside.
inline PictureSample covered(PictureSample picture, int left, int top, int width, int height,
                             std::uint8_t luma, std::uint8_t u = 90, std::uint8_t v = 170) {
    const auto fill = [&](auto& plane, int planeWidth, int planeHeight, int scale,
                          std::uint8_t value) {
        for (int y = std::max(0, top / scale); y < std::min(planeHeight, (top + height) / scale);
             ++y) {
            for (int x = std::max(0, left / scale);
                 x < std::min(planeWidth, (left + width) / scale); ++x) {
                plane[static_cast<std::size_t>(y * planeWidth + x)] = value;
            }
        }
    };
    fill(picture.luma, lumaWidthPx, lumaHeightPx, 1, luma);
    fill(picture.u, chromaWidthPx, chromaHeightPx, 4, u);
    fill(picture.v, chromaWidthPx, chromaHeightPx, 4, v);
    return picture;
}

}  // namespace reference_host::scenes
