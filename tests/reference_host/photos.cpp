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

std::string big(std::uint32_t value, std::size_t bytes = 4) {
    return number(value, bytes, ByteOrder::big);
}

/// A box of the MP4 family.
std::string box(const std::string& name, const std::string& content) {
    return big(static_cast<std::uint32_t>(content.size()) + 8) + name + content;
}

/// One that begins with a version and flags, which are 0.
std::string fullBox(const std::string& name, const std::string& content,
                    std::uint32_t version = 0) {
    return box(name, big(version << 24) + content);
}

/// The whole box `name` of a file, its head included.
std::string boxIn(const std::string& file, const std::string& name) {
    const std::size_t place = file.find(name) - 4;
    std::string size = file.substr(place, 4);
    std::reverse(size.begin(), size.end());
    return file.substr(place, numberIn(size, 0, 4));
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

std::string gridOf(const std::string& avif, std::uint32_t sidePx, std::uint32_t perSide) {
    // Item 1 is the grid, item 2 the picture in it.
    const std::string picture = boxIn(avif, "mdat").substr(8);
    const std::string grid = big(1, 2) + big(perSide - 1, 1) + big(perSide - 1, 1) +
                             big(sidePx * perSide) + big(sidePx * perSide);
    std::string parts;
    for (std::uint32_t i = 0; i < perSide * perSide; ++i)
        parts += big(2, 2);
    const auto item = [](std::uint32_t id, const std::string& type) {
        return fullBox("infe", big(id, 2) + big(0, 2) + type + big(0, 1), 2);
    };
    const auto place = [](std::uint32_t id, std::uint32_t where, std::size_t offset,
                          const std::string& content) {
        return big(id, 2) + big(where, 2) + big(0, 2) + big(1, 2) +
               big(static_cast<std::uint32_t>(offset)) +
               big(static_cast<std::uint32_t>(content.size()));
    };
    const auto head = [&](std::size_t offset) {
        const std::string properties =
            box("ipco", fullBox("ispe", big(sidePx) + big(sidePx)) + boxIn(avif, "av1C")) +
            fullBox("ipma", big(2) + big(1, 2) + big(1, 1) + big(1, 1) + big(2, 2) + big(2, 1) +
                                big(1, 1) + big(0x82, 1));
        return box("ftyp", "avif" + big(0) + "avifmif1") +
               fullBox(
                   "meta",
                   fullBox("hdlr", big(0) + "pict" + std::string(13, '\0')) +
                       fullBox("pitm", big(1, 2)) +
                       fullBox("iinf", big(2, 2) + item(1, "grid") + item(2, "av01")) +
                       fullBox("iref", box("dimg", big(1, 2) + big(perSide * perSide, 2) + parts)) +
                       box("iprp", properties) + box("idat", grid) +
                       fullBox("iloc",
                               big(0x44, 1) + big(0, 1) + big(2, 2) + place(1, 1, 0, grid) +
                                   place(2, 0, offset, picture),
                               1));
    };
    // The head is as long whatever stands in it.
    return head(head(0).size() + 8) + box("mdat", picture);
}

}  // namespace reference_host_tests
