#pragma once

#include <cstddef>
#include <cstdint>

namespace reference_host::media {

/// The samples of one component of a picture in memory, which is not owned.
struct SamplePlane {
    /// The first sample of the first row.
    const std::uint8_t* samples = nullptr;
    /// From one row to the next.
    std::ptrdiff_t strideBytes = 0;
    std::size_t widthPx = 0;
    std::size_t heightPx = 0;
    /// 1, or 2 for samples of 16 bits in this machine's order of bytes.
    std::size_t bytesPerSample = 1;
    /// From one sample of the row to the next, in samples: 2 where two components take turns.
    std::size_t step = 1;
};

/// How the mean of some samples becomes a value of 0 to 255: mean x gain + offset, rounded, and
/// clamped where it is outside.
struct Levels {
    float gain = 1;
    float offset = 0;
};

/// Says whether a plane can be averaged down to this size: each value covers a sample at least, and
/// not so many that their sum could overflow.
bool canAverage(const SamplePlane& plane, std::size_t widthPx, std::size_t heightPx);

/// Returns which of the rows that a value covers are read: all (1), or every so-manieth from the
/// first on, where a plane is so high that a few are as good.
std::size_t rowStepOf(std::size_t planeHeightPx, std::size_t heightPx);

/// Averages a plane down to `widthPx` x `heightPx` values, written to `values` row by row without
/// padding. Each value is the mean of the whole samples that it covers: column `i` those from
/// i W / widthPx to before (i + 1) W / widthPx, rounded down; rows likewise, as far as rowStepOf()
/// says. The plane has to be one that canAverage() allows.
void averagePlane(const SamplePlane& plane, const Levels& levels, std::size_t widthPx,
                  std::size_t heightPx, std::uint8_t* values);

}  // namespace reference_host::media
