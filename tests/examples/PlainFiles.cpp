#include "tests/examples/PlainFiles.h"

#include <array>
#include <fstream>
#include <iterator>

namespace minimal_host_tests {
namespace {

std::string pixelsOf(int picture, const PlainFiles::Brightness& brightness) {
    std::string pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            pixels += static_cast<char>(brightness(picture, x, y));
    }
    return pixels;
}

}  // namespace

std::filesystem::path PlainFiles::makeVideo(const std::string& name, int pictures,
                                            const Brightness& brightness,
                                            const std::string& header) const {
    const std::string colours(width * height / 2, '\x80');
    std::string bytes = "YUV4MPEG2 W64 H48 " + header + "\n";
    for (int i = 0; i < pictures; ++i)
        bytes += "FRAME\n" + pixelsOf(i, brightness) + colours;
    return write(name, bytes);
}

std::filesystem::path PlainFiles::makePhoto(const std::string& name,
                                            const Brightness& brightness) const {
    return write(name, "P5\n64 48\n255\n" + pixelsOf(0, brightness));
}

std::filesystem::path PlainFiles::write(const std::string& name, const std::string& bytes) const {
    auto file = directory_ / name;
    std::ofstream(file, std::ios::binary) << bytes;
    return file;
}

std::filesystem::path PlainFiles::makeThreeScenes(const std::string& name) const {
    return makeVideo(name, 250, [](int picture, int x, int y) {
        constexpr std::array bands{0, 80, 160, 240};
        if (picture < 75) return bands[static_cast<std::size_t>(x / 16)];
        if (picture >= 175) return 50;
        // Two pixels have changed places, which leaves the entropy as it is.
        const bool isSwapped = picture == 113 && y == 20 && (x == 10 || x == 50);
        return (x < 32) != isSwapped ? 100 : 200;
    });
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace minimal_host_tests
