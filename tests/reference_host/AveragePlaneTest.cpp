#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "reference_host/media/averagePlane.h"

namespace reference_host_tests {
namespace {

using reference_host::media::averagePlane;
using reference_host::media::canAverage;
using reference_host::media::Levels;
using reference_host::media::rowStepOf;
using reference_host::media::SamplePlane;

/// Random samples in memory, with gaps between them and between their rows that are no samples.
template <typename Sample>
class Picture {
public:
    Picture(std::size_t width, std::size_t height, std::size_t step, std::uint32_t seed)
        : width_(width), height_(height), step_(step), samples_((width * step + padding) * height) {
        for (Sample& sample : samples_) {
            seed = seed * 1664525U + 1013904223U;
            sample = static_cast<Sample>(seed >> 12U);
        }
    }

    SamplePlane plane() const {
        return {.samples = reinterpret_cast<const std::uint8_t*>(samples_.data()),
                .strideBytes = static_cast<std::ptrdiff_t>(stride() * sizeof(Sample)),
                .widthPx = width_,
                .heightPx = height_,
                .bytesPerSample = sizeof(Sample),
                .step = step_};
    }

    double at(std::size_t x, std::size_t y) const { return samples_[y * stride() + x * step_]; }

private:
    static constexpr std::size_t padding = 5;

    std::size_t stride() const { return width_ * step_ + padding; }

    std::size_t width_;
    std::size_t height_;
    std::size_t step_;
    std::vector<Sample> samples_;
};

template <typename Sample>
void checkMeans(const Levels& levels) {
    const std::size_t width = *rc::gen::inRange<std::size_t>(1, 30);
    const std::size_t height = *rc::gen::inRange<std::size_t>(1, 20);
    const Picture<Sample> picture(width + *rc::gen::inRange<std::size_t>(0, 300),
                                  height + *rc::gen::inRange<std::size_t>(0, 200),
                                  *rc::gen::inRange<std::size_t>(1, 4),
                                  *rc::gen::arbitrary<std::uint32_t>());
    const SamplePlane plane = picture.plane();
    RC_ASSERT(canAverage(plane, width, height));
    constexpr std::uint8_t untouched = 77;
    std::vector<std::uint8_t> values(width * height + 1, untouched);

    averagePlane(plane, levels, width, height, values.data());

    const std::size_t rowStep = rowStepOf(plane.heightPx, height);
    for (std::size_t row = 0; row < height; ++row) {
        for (std::size_t column = 0; column < width; ++column) {
            double sum = 0;
            double count = 0;
            const std::size_t endY = (row + 1) * plane.heightPx / height;
            for (std::size_t y = row * plane.heightPx / height; y < endY; y += rowStep) {
                const std::size_t endX = (column + 1) * plane.widthPx / width;
                for (std::size_t x = column * plane.widthPx / width; x < endX; ++x) {
                    sum += picture.at(x, y);
                    ++count;
                }
            }
            const double exact = std::clamp(sum / count * levels.gain + levels.offset, 0.0, 255.0);
            RC_ASSERT(std::abs(values[row * width + column] - exact) < 0.501);
        }
    }
    RC_ASSERT(values.back() == untouched);
}

RC_GTEST_PROP(AveragePlane, ValuesAreMeansOfBytes, ()) {
    checkMeans<std::uint8_t>({.gain = 1, .offset = 0});
}

RC_GTEST_PROP(AveragePlane, ValuesAreMeansOfWords, ()) {
    checkMeans<std::uint16_t>({.gain = 1 / 256.0F, .offset = 0});
}

RC_GTEST_PROP(AveragePlane, StretchesAndClamps, ()) {
    checkMeans<std::uint8_t>({.gain = 2.5F, .offset = -150});
}

RC_GTEST_PROP(AveragePlane, ReadsEnoughRowsOfEachPart, ()) {
    const std::size_t height = *rc::gen::inRange<std::size_t>(1, 200);
    const std::size_t planeHeight = height + *rc::gen::inRange<std::size_t>(0, 9000);
    const std::size_t step = rowStepOf(planeHeight, height);
    const std::size_t smallestPart = planeHeight / height;
    RC_ASSERT((smallestPart + step - 1) / step >= std::min<std::size_t>(smallestPart, 3));
    // So that 16 bits hold what a column of bytes adds up to, and by far.
    RC_ASSERT((smallestPart + 1 + step - 1) / step <= 6);
}

TEST(AveragePlane, LastRowMayEndWithItsLastSample) {
    // Two components that take turns: of the second, nothing follows the last sample. Memory of
    // exactly this size lets a checker see any read behind it.
    const std::vector<std::uint8_t> samples{0, 10, 0, 20, 0, 30, 0, 40};
    const SamplePlane second{
        .samples = samples.data() + 1, .strideBytes = 4, .widthPx = 2, .heightPx = 2, .step = 2};
    std::vector<std::uint8_t> values(2);

    averagePlane(second, {}, 2, 1, values.data());

    EXPECT_EQ(values, (std::vector<std::uint8_t>{20, 30}));
}

TEST(AveragePlane, ReadsRowsFromBottomToTop) {
    const std::vector<std::uint8_t> samples{1, 2, 3};
    const SamplePlane upsideDown{
        .samples = samples.data() + 2, .strideBytes = -1, .widthPx = 1, .heightPx = 3};
    std::vector<std::uint8_t> values(3);

    averagePlane(upsideDown, {}, 1, 3, values.data());

    EXPECT_EQ(values, (std::vector<std::uint8_t>{3, 2, 1}));
}

TEST(AveragePlane, RefusesToEnlargeAndToOverflow) {
    SamplePlane plane{.widthPx = 192, .heightPx = 108, .bytesPerSample = 2};
    EXPECT_TRUE(canAverage(plane, 192, 108));
    EXPECT_FALSE(canAverage(plane, 193, 108));
    EXPECT_FALSE(canAverage(plane, 192, 109));
    // 32,768 samples of 65,535 are still less than 2^31; one more would be too many.
    plane.widthPx = 32768;
    plane.heightPx = 1;
    EXPECT_TRUE(canAverage(plane, 1, 1));
    plane.widthPx = 32769;
    EXPECT_FALSE(canAverage(plane, 1, 1));
}

TEST(AveragePlane, HoldsTheLargestSums) {
    const std::vector<std::uint16_t> samples(32768, 65535);
    const SamplePlane plane{.samples = reinterpret_cast<const std::uint8_t*>(samples.data()),
                            .strideBytes = 65536,
                            .widthPx = 32768,
                            .heightPx = 1,
                            .bytesPerSample = 2};
    std::uint8_t value = 0;
    averagePlane(plane, {.gain = 1 / 257.0F, .offset = 0}, 1, 1, &value);
    EXPECT_EQ(value, 255);
}

}  // namespace
}  // namespace reference_host_tests
