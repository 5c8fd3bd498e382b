#pragma once

#include <cstddef>
#include <cstdint>

#include "host/status.h"

namespace reference_host::media {

/// More than the largest cameras give (about 200 million). A file can claim any size in a few
/// bytes, and a picture of this one already takes 400 MB and more. FFmpeg has a bound of its own,
/// a little below or above, that depends on the shape.
constexpr std::int64_t maxPicturePixels = std::int64_t{1} << 28;

/// What one decoded picture may take. A photo of 100 million pixels takes 400 MB with eight bits
/// and transparency, a picture of 8K video with ten bits takes 100 MB; a file of a few megabytes
/// can claim gigabytes.
constexpr std::int64_t maxPictureBytes = std::int64_t{512} << 20;

/// Up to here (8K and a little more), FFmpeg may decode pictures by itself to find out about a
/// stream: it counts pixels only, of which one takes 16 bytes at most.
constexpr std::int64_t maxProbedPixels = maxPictureBytes / 16;

/// About a hundred years. Timestamps are free to claim anything; below this, a hundred thousand
/// durations can still be multiplied and added up without care.
constexpr std::int64_t maxDurationTicks = std::int64_t{100} * 366 * 24 * 3600 * KOR::ticksPerSecond;

/// How many timestamps of key frames are kept of one file. They take a megabyte; it is every single
/// frame of more than an hour where all are key frames.
constexpr std::size_t maxKeyTimestamps = std::size_t{1} << 17;

}  // namespace reference_host::media
