#pragma once

#include <cstdint>
#include <string>

namespace reference_host_tests {

enum class ByteOrder { little, big };

/// The formats of photos that can hold an EXIF block.
enum class Photo { jpeg, png, webp, tiff };

/// Returns an EXIF block whose one tag is "Orientation".
std::string exifBlock(int orientation, ByteOrder order = ByteOrder::little);

/// Returns the chunk of a WebP file that holds an EXIF block.
std::string exifChunk(const std::string& block);

/// Returns the bytes of a photo without EXIF, of 64 by 48 pixels where that matters, with the tag
/// "Orientation" put in.
std::string withExif(const std::string& photo, Photo format, int orientation);

/// Returns a PNG as far as its chunks go: they hold no picture.
std::string smallPng();

/// Makes an AVIF that puts the picture of another one, `sidePx` square, together `perSide` times in
/// each direction, and declares to be as small as a single one.
std::string gridOf(const std::string& avif, std::uint32_t sidePx, std::uint32_t perSide);

}  // namespace reference_host_tests
