#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/reference_host/TemporaryDirectory.h"

namespace minimal_host_tests {

/// The size of the pictures that are made here.
constexpr int width = 64;
constexpr int height = 48;

/// Makes uncompressed videos and photos in a directory of its own.
class PlainFiles {
public:
    /// The brightness of a picture at a place.
    using Brightness = std::function<int(int picture, int x, int y)>;

    /// Makes a video; `header` is what stands behind its size, pictures are mono for "Cmono".
    std::filesystem::path makeVideo(const std::string& name, int pictures,
                                    const Brightness& brightness,
                                    const std::string& header = "F25:1 Ip A1:1 C420jpeg") const;
    std::filesystem::path makePhoto(const std::string& name, const Brightness& brightness) const;
    std::filesystem::path write(const std::string& name, const std::string& bytes) const;

    /// A video of ten seconds with scenes of three, four and three: four bands, two halves, plain.
    /// Picture 113 is a little sharper than the others of its scene.
    std::filesystem::path makeThreeScenes(const std::string& name = "three.y4m") const;

    const std::filesystem::path& directory() const { return directory_.path(); }

private:
    reference_host_tests::TemporaryDirectory directory_;
};

/// Returns all bytes of a file.
std::string contentOf(const std::filesystem::path& file);

}  // namespace minimal_host_tests
