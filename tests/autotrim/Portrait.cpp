#include "tests/autotrim/Portrait.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace autotrim {
namespace {

using std::filesystem::path;

/// ffmpeg's filters that undo what an EXIF orientation, from 1 on, asks a viewer to do.
constexpr std::array<const char*, 8> storing = {
    "null",                   // shown as it is stored
    "hflip",                  // mirrored
    "hflip,vflip",            // turned half round
    "vflip",                  // mirrored upside down
    "transpose=cclock_flip",  // rows shown as columns
    "transpose=cclock",       // turned clockwise
    "transpose=clock_flip",   // rows shown as columns, turned half round
    "transpose=clock",        // turned counter-clockwise
};

void makeUntagged(const path& video, int orientation, const path& file) {
    const std::string command = "ffmpeg -nostdin -v error -y -ss 1 -i '" + video.string() +
                                "' -frames:v 1 -vf crop=320:480:180:0," +
                                storing.at(std::size_t(orientation - 1)) +
                                " -pix_fmt yuvj444p -qmin 1 -q:v 1 '" + file.string() + "' >&2";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

/// The segment of a JPEG that says in EXIF how it is to be shown: a TIFF header, little-endian, and
/// one directory with one entry, tag 0x0112, one 16-bit number.
std::string exifSegment(int orientation) {
    using namespace std::string_literals;
    const std::string tiff = "II*\0\x08\0\0\0"s + "\x01\0"s + "\x12\x01\x03\0\x01\0\0\0"s +
                             static_cast<char>(orientation) + "\0\0\0"s + "\0\0\0\0"s;
    const std::string content = "Exif\0\0"s + tiff;
    return "\xFF\xE1\0"s + static_cast<char>(content.size() + 2) + content;
}

}  // namespace

void makePortrait(const path& video, int orientation, const path& file) {
    makeUntagged(video, orientation, file);
    std::ifstream in(file, std::ios::binary);
    std::string jpeg{std::istreambuf_iterator<char>(in), {}};
    constexpr std::size_t startOfImage = 2;  // bytes; the segments follow
    jpeg.insert(startOfImage, exifSegment(orientation));
    std::ofstream(file, std::ios::binary) << jpeg;
}

}  // namespace autotrim
