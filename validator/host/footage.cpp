#include "validator/host/footage.h"

#include <cstddef>
#include <fstream>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>

namespace validator::footage {
namespace {

constexpr std::size_t width = 64;
constexpr std::size_t height = 48;

std::filesystem::path written(const std::filesystem::path& file,
                              const std::function<std::string()>& content) {
    if (std::filesystem::exists(file)) return file;
    std::ofstream stream(file, std::ios::binary);
    stream << content();
    if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
    return file;
}

/// A picture's brightness, row by row. All values lie from 16 to 235, so that no range is cut off.
std::string picture(const std::function<unsigned(std::size_t x, std::size_t y)>& brightness) {
    std::string pixels;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x)
            pixels += static_cast<char>(brightness(x, y));
    }
    return pixels;
}

std::string pictureOf(std::int64_t number, std::mt19937_64& random) {
    switch (number / framesPerScene) {
        case 0:
            return picture([&](std::size_t x, std::size_t) {
                return static_cast<unsigned>(20 + x) + static_cast<unsigned>(random() % 2);
            });
        case 1:
            return picture([&](std::size_t x, std::size_t y) {
                return ((x ^ y) & 2U) / 2U * 100U + 120U + static_cast<unsigned>(random() % 2);
            });
        default:
            return picture([&](std::size_t, std::size_t y) {
                return y < height / 2 ? 60U : 90U + static_cast<unsigned>(random() % 2);
            });
    }
}

/// YUV4MPEG2: the pictures of video() from the number `first` on.
std::string videoFrom(std::int64_t first) {
    std::mt19937_64 random;
    std::string content = "YUV4MPEG2 W64 H48 F10:1 Ip A1:1 C420jpeg\n";
    const std::string noColour(width * height / 2, '\x80');
    for (std::int64_t i = first; i < 3 * framesPerScene; ++i)
        content += "FRAME\n" + pictureOf(i, random) + noColour;
    return content;
}

/// A portable graymap.
std::string photoOf(const std::string& pixels) {
    return "P5\n64 48\n255\n" + pixels;
}

}  // namespace

std::filesystem::path video(const std::filesystem::path& directory) {
    return written(directory / "video.y4m", [] { return videoFrom(0); });
}

std::filesystem::path shortVideo(const std::filesystem::path& directory) {
    return written(directory / "short.y4m", [] { return videoFrom(3 * framesPerScene / 2); });
}

std::filesystem::path twoTonePhoto(const std::filesystem::path& directory) {
    return written(directory / "twoTone.pgm", [] {
        return photoOf(
            picture([](std::size_t x, std::size_t) { return x < width / 2 ? 50U : 200U; }));
    });
}

std::filesystem::path evenPhoto(const std::filesystem::path& directory) {
    return written(directory / "even.pgm",
                   [] { return photoOf(picture([](std::size_t, std::size_t) { return 128U; })); });
}

std::filesystem::path text(const std::filesystem::path& directory) {
    return written(directory / "text.txt", [] { return "This is no picture.\n"; });
}

}  // namespace validator::footage
