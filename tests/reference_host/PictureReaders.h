#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stop_token>
#include <vector>

#include "reference_host/media/PictureReader.h"
#include "reference_host/scenes/PictureFeatures.h"

namespace reference_host_tests {

/// Returns a reader that decodes every picture of a file, one after the other: it is told of no
/// more than one key frame, and so finds nothing that can be divided.
std::unique_ptr<reference_host::media::PictureReader> readerOfAll(const std::filesystem::path& file,
                                                                  std::stop_token stop = {});

/// Returns a reader that leaves out whatever a look for scenes does not need.
std::unique_ptr<reference_host::media::PictureReader> readerForScenes(
    const std::filesystem::path& file, const reference_host::media::PictureReader::Plan& plan,
    std::stop_token stop = {});

/// Returns the pictures that `reader` has left to give.
std::vector<reference_host::scenes::PictureFeatures> picturesOf(
    reference_host::media::PictureReader& reader);

/// Returns where all pictures of a file stand.
std::vector<std::int64_t> positionsOf(const std::filesystem::path& file);

}  // namespace reference_host_tests
