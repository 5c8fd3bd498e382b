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

}  // namespace reference_host_tests
