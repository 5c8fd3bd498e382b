#include "reference_host/media/exifOrientation.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace reference_host::media {
namespace {

using Bytes = std::span<const std::uint8_t>;

/// TIFF 6.0: the tag, and the type of numbers of two bytes.
constexpr std::uint32_t orientationTag = 0x0112;
constexpr std::uint32_t shortType = 3;

/// An entry of a directory: tag and type of two bytes each, count and value of four.
constexpr std::size_t entryBytes = 12;

bool startsWith(Bytes bytes, std::string_view text) {
    return bytes.size() >= text.size() &&
           std::equal(text.begin(), text.end(), bytes.begin(), [](char c, std::uint8_t byte) {
               return static_cast<std::uint8_t>(c) == byte;
           });
}

/// The rest behind `offset`; nothing where that lies beyond the end.
Bytes behind(Bytes bytes, std::size_t offset) {
    return offset > bytes.size() ? Bytes{} : bytes.subspan(offset);
}

enum class Order { bigEndian, littleEndian };

/// Reads `size` bytes at `offset`, at most four, as one number; 0 where they are not all there.
std::size_t numberAt(Bytes bytes, std::size_t offset, std::size_t size, Order order) {
    const Bytes digits = behind(bytes, offset);
    if (digits.size() < size) return 0;
    std::size_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number = number << 8 | digits[order == Order::bigEndian ? i : size - 1 - i];
    return number;
}

Orientation ofTiff(Bytes tiff) {
    const bool isLittle = startsWith(tiff, {"II*\0", 4});
    if (!isLittle && !startsWith(tiff, {"MM\0*", 4})) return {};
    const Order order = isLittle ? Order::littleEndian : Order::bigEndian;
    const Bytes directory = behind(tiff, numberAt(tiff, 4, 4, order));
    const std::size_t entries = numberAt(directory, 0, 2, order);
    for (std::size_t i = 0; i < entries; ++i) {
        const Bytes entry = behind(directory, 2 + i * entryBytes);
        if (entry.size() < entryBytes) break;
        if (numberAt(entry, 0, 2, order) != orientationTag) continue;
        if (numberAt(entry, 2, 2, order) != shortType) break;
        return Orientation::ofExif(static_cast<int>(numberAt(entry, 8, 2, order)));
    }
    return {};
}

/// Some writers put the head of JPEG's EXIF segment before the directory.
Orientation ofExifBlock(Bytes block) {
    constexpr std::string_view head{"Exif\0\0", 6};
    return ofTiff(startsWith(block, head) ? block.subspan(head.size()) : block);
}

/// How a file is made up of chunks, each with a head that tells its name and size.
struct Chunks {
    std::size_t first;
    std::size_t nameOffset;
    std::size_t sizeOffset;
    std::size_t headBytes;
    /// What stands behind the content.
    std::size_t tailBytes;
    /// Chunks begin at multiples of this.
    std::size_t alignment;
    Order order;
    std::string_view exifName;
};

constexpr Chunks pngChunks{.first = 8,
                           .nameOffset = 4,
                           .sizeOffset = 0,
                           .headBytes = 8,
                           .tailBytes = 4,
                           .alignment = 1,
                           .order = Order::bigEndian,
                           .exifName = "eXIf"};

constexpr Chunks webpChunks{.first = 12,
                            .nameOffset = 0,
                            .sizeOffset = 4,
                            .headBytes = 8,
                            .tailBytes = 0,
                            .alignment = 2,
                            .order = Order::littleEndian,
                            .exifName = "EXIF"};

Orientation ofChunks(Bytes file, const Chunks& chunks) {
    Bytes rest = behind(file, chunks.first);
    while (rest.size() >= chunks.headBytes) {
        const std::size_t size = numberAt(rest, chunks.sizeOffset, 4, chunks.order);
        const Bytes content = rest.subspan(chunks.headBytes);
        if (startsWith(rest.subspan(chunks.nameOffset), chunks.exifName)) {
            return ofExifBlock(content.first(std::min(size, content.size())));
        }
        rest = behind(content, (size + chunks.alignment - 1) / chunks.alignment * chunks.alignment +
                                   chunks.tailBytes);
    }
    return {};
}

}  // namespace

Orientation exifOrientation(std::span<const std::uint8_t> file) {
    if (startsWith(file, "\x89PNG\r\n\x1a\n")) return ofChunks(file, pngChunks);
    if (startsWith(file, "RIFF") && startsWith(behind(file, 8), "WEBP")) {
        return ofChunks(file, webpChunks);
    }
    return ofTiff(file);
}

}  // namespace reference_host::media
