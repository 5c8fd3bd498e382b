#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/IDmBaseObj.h"
#include "host/media.h"
#include "tests/reference_host/Holder.h"
#include "tests/reference_host/TemporaryDirectory.h"

namespace reference_host_tests {

/// Makes media files in a directory of its own, with the program ffmpeg.
class FootageFiles {
public:
    /// Makes the file `name` from the output of `arguments`, which are ffmpeg's, inputs included.
    /// The name is taken literally. Throws std::runtime_error where ffmpeg fails.
    std::filesystem::path make(const std::string& name, const std::string& arguments) const;

    /// Makes a video of `frames` moving pictures, 25 a second, 64 by 48 pixels; `arguments` choose
    /// how it is stored.
    std::filesystem::path makeVideo(const std::string& name, int frames,
                                    const std::string& arguments = "-c:v libx264") const;

    /// Makes a file with these very bytes.
    std::filesystem::path write(const std::string& name, const std::string& bytes) const;

    /// Replaces the bytes at `offset`.
    static void patch(const std::filesystem::path& file, std::int64_t offset,
                      const std::string& bytes);

    /// Cuts the file down to a part of its size.
    static void truncate(const std::filesystem::path& file, double part);

    std::filesystem::path path(const std::string& name) const { return directory_ / name; }

private:
    TemporaryDirectory directory_;
};

/// Returns all bytes of a file.
std::string contentOf(const std::filesystem::path& file);

/// ffmpeg's input of `frames` moving pictures, 25 a second.
std::string movingPictures(int frames, const std::string& size = "64x48");

/// Imports a file that has to be good, without a cache. Throws std::runtime_error with the reason.
Holder<KOR::IDmBaseObj> import(const std::filesystem::path& file,
                               const std::filesystem::path& cacheRoot = {});

/// Returns the reason why a file is not imported; empty when it is.
std::string refusalOf(const std::filesystem::path& file);

KOR::IDmBaseMedia& mediaOf(const Holder<KOR::IDmBaseObj>& material);
KOR::IDmMediaSource& sourceOf(const Holder<KOR::IDmBaseObj>& material);

/// Returns the positions of `frames` pictures, 25 a second.
std::vector<std::int64_t> evenPositions(int frames);

}  // namespace reference_host_tests
