#pragma once

#include <cstdint>
#include <filesystem>

#include "host/results.h"
#include "host/status.h"

/// Files that are materials: pictures that need no library to be written, and hardly one to be
/// read. Each function writes a file into `directory`, where it is not there yet, and returns it.
namespace validator::footage {

/// Three scenes that nobody mistakes for one: soft bars, a fine board, and two halves, all with a
/// little grain.
std::filesystem::path video(const std::filesystem::path& directory);

constexpr std::int64_t framesPerScene = 20;
constexpr std::int64_t frameTicks = KOR::ticksPerSecond / 10;
constexpr std::int64_t sceneTicks = framesPerScene * frameTicks;
constexpr std::int64_t videoTicks = 3 * sceneTicks;

/// The scenes, in order.
constexpr KOR::TickRange softScene{0, sceneTicks};
constexpr KOR::TickRange fineScene{sceneTicks, 2 * sceneTicks};
constexpr KOR::TickRange halvedScene{2 * sceneTicks, videoTicks};

/// The second half of video() only: another file with another length.
std::filesystem::path shortVideo(const std::filesystem::path& directory);
constexpr std::int64_t shortVideoTicks = videoTicks / 2;

/// One half dark, the other light: one bit.
std::filesystem::path twoTonePhoto(const std::filesystem::path& directory);

/// One even area.
std::filesystem::path evenPhoto(const std::filesystem::path& directory);

/// Something that is neither a video nor a photo.
std::filesystem::path text(const std::filesystem::path& directory);

}  // namespace validator::footage
