#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "reference_host/scenes/Thumbnail.h"
#include "reference_host/vision/Picture.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {

/// Makes a moving video whose pictures, at most 256, each show their number in eight big blocks;
/// `arguments` choose how it is stored.
std::filesystem::path makeNumbered(const FootageFiles& files, const std::string& name, int frames,
                                   const std::string& arguments);

/// Returns the number that a picture shows.
int numberOf(const reference_host::vision::Picture& picture);
int numberOf(const reference_host::scenes::Thumbnail& thumbnail);

/// A picture of a video as it is met when all are read in order.
struct NumberedPicture {
    std::int64_t positionTicks;
    int number;
};

/// Returns all pictures of a video in order.
std::vector<NumberedPicture> numberedPictures(const std::filesystem::path& file);

}  // namespace reference_host_tests
