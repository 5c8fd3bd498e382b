#pragma once

#include <filesystem>

namespace autotrim {

/// Makes a JPEG, 320 x 480 as it is to be shown, of the person one second into `video`, who stands
/// between its columns 180 and 500; with the program ffmpeg. `orientation` is the EXIF one, 1 to 8,
/// and the pixels are stored turned and mirrored accordingly. Throws std::runtime_error where
/// ffmpeg fails.
void makePortrait(const std::filesystem::path& video, int orientation,
                  const std::filesystem::path& file);

}  // namespace autotrim
