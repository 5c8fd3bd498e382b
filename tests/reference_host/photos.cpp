#include "tests/reference_host/photos.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace reference_host_tests {
namespace {

std::string number(std::uint32_t value, std::size_t bytes, ByteOrder order) {
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * i) & 0xff);
    if (order == ByteOrder::big) std::reverse(text.begin(), text.end());
    return text;
}

std::uint32_t numberIn(const std::string& text, std::size_t offset, std::size_t bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
        value |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(text.at(offset + i)))
                 << (8 * i);
    return value;
}

/// The tag as it stands in a directory.
std::string orientationEntry(int orientation, ByteOrder order) {
    return number(0x112, 2, order) + number(3, 2, order) + number(1, 4, order) +
           number(static_cast<std::uint32_t>(orientation), 2, order) + number(0, 2, order);
}

std::uint32_t crcOf(const std::string& bytes) {
    std::uint32_t crc = ~0U;
    for (const char c : bytes) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xedb88320U : 0);
    }
    return ~crc;
}

std::string pngChunk(const std::string& name, const std::string& content) {
    return number(static_cast<std::uint32_t>(content.size()), 4, ByteOrder::big) + name + content +
           number(crcOf(name + content), 4, ByteOrder::big);
}

const std::string pngHead = "\x89PNG\r\n\x1a\n";

/// Length, name, 13 bytes and checksum.
constexpr std::size_t pngHeaderChunkBytes = 25;

/// Moves the directory to the end, with one entry more.
std::string withEntry(const std::string& tiff, int orientation) {
    const std::size_t directory = numberIn(tiff, 4, 4);
    const std::size_t count = numberIn(tiff, directory, 2);
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < count; ++i)
        entries.push_back(tiff.substr(directory + 2 + 12 * i, 12));
    entries.push_back(orientationEntry(orientation, ByteOrder::little));
    std::sort(entries.begin(), entries.end(), [](const std::string& a, const std::string& b) {
        return numberIn(a, 0, 2) < numberIn(b, 0, 2);
    });
    std::string made = tiff;
    made.replace(4, 4, number(static_cast<std::uint32_t>(tiff.size()), 4, ByteOrder::little));
    made += number(static_cast<std::uint32_t>(entries.size()), 2, ByteOrder::little);
    for (const std::string& entry : entries)
        made += entry;
    return made + number(0, 4, ByteOrder::little);
}

}  // namespace

std::string exifBlock(int orientation, ByteOrder order) {
    return (order == ByteOrder::little ? "II" : "MM") + number(42, 2, order) + number(8, 4, order) +
           number(1, 2, order) + orientationEntry(orientation, order) + number(0, 4, order);
}

std::string exifChunk(const std::string& block) {
    return "EXIF" + number(static_cast<std::uint32_t>(block.size()), 4, ByteOrder::little) + block;
}

std::string withExif(const std::string& photo, Photo format, int orientation) {
    const std::string block = exifBlock(orientation);
    switch (format) {
        case Photo::jpeg: {
            const std::string segment = std::string("Exif\0\0", 6) + block;
            return photo.substr(0, 2) + "\xff\xe1" +
                   number(static_cast<std::uint32_t>(segment.size()) + 2, 2, ByteOrder::big) +
                   segment + photo.substr(2);
        }
        case Photo::png: {
            const std::size_t place = pngHead.size() + pngHeaderChunkBytes;
            return photo.substr(0, place) + pngChunk("eXIf", block) + photo.substr(place);
        }
        case Photo::webp: {
            // The extended head says that there is EXIF, and repeats the size less one.
            const std::string content =
                "WEBPVP8X" + number(10, 4, ByteOrder::little) + number(8, 4, ByteOrder::little) +
                number(63, 3, ByteOrder::little) + number(47, 3, ByteOrder::little) +
                photo.substr(12) + exifChunk(block);
            return "RIFF" +
                   number(static_cast<std::uint32_t>(content.size()), 4, ByteOrder::little) +
                   content;
        }
        case Photo::tiff:
            return withEntry(photo, orientation);
    }
    throw std::invalid_argument("no such format");
}

std::string smallPng() {
    return pngHead + pngChunk("IHDR", std::string(13, '\0')) + pngChunk("IEND", "");
}

}  // namespace reference_host_tests
