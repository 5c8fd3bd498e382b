#include "reference_host/media/PacketPlan.h"

#include <algorithm>
#include <vector>

namespace reference_host::media {
namespace {

/// Sizes are summed up over so many pictures in the order in which they are shown: two or more
/// rounds of the usual pattern of large and small ones.
constexpr std::size_t windowPictures = 8;

/// How far the sums may differ in an even stretch. In noise, which is what makes packets large,
/// they stay within a tenth; a dissolve takes two fifths of it away, and adds more than that where
/// there is none.
constexpr std::int64_t evenNumerator = 3;
constexpr std::int64_t evenDenominator = 2;

/// A packet that is so much larger than all near it brings something new, though its window may
/// still be even.
constexpr std::int64_t outlierNumerator = 13;
constexpr std::int64_t outlierDenominator = 10;

/// The part of a key frame's size above which a packet may hold as much that is new.
constexpr std::int64_t newNumerator = 7;
constexpr std::int64_t newDenominator = 20;

/// Added to each packet, as a part of the key frame's: a dissolve or cut to something new takes as
/// much as a key frame, so that what is far below tells nothing.
constexpr std::int64_t keyFramePart = 100;

struct ShownPacket {
    std::int64_t timestamp;
    std::size_t decodedAs;
    std::int64_t bytes;
};

std::vector<ShownPacket> inOrderOfShowing(std::span<const PacketFacts> group) {
    std::vector<ShownPacket> shown;
    shown.reserve(group.size());
    const std::int64_t base = group.front().bytes / keyFramePart + 1;
    for (std::size_t i = 0; i < group.size(); ++i)
        shown.push_back({group[i].timestamp, i, group[i].bytes + base});
    std::sort(shown.begin(), shown.end(),
              [](const ShownPacket& a, const ShownPacket& b) { return a.timestamp < b.timestamp; });
    return shown;
}

bool areEven(std::int64_t smallest, std::int64_t largest) {
    return largest * evenDenominator <= smallest * evenNumerator;
}

/// Says whether the packet `i` is larger than those near it are.
bool standsOut(std::span<const ShownPacket> shown, std::size_t i) {
    std::int64_t largest = 0;
    const std::size_t first = std::max<std::size_t>(1, i - std::min(i, windowPictures));
    const std::size_t last = std::min(shown.size() - 1, i + windowPictures);
    for (std::size_t k = first; k <= last; ++k) {
        if (k != i) largest = std::max(largest, shown[k].bytes);
    }
    return shown[i].bytes * outlierDenominator > largest * outlierNumerator;
}

/// Returns the first picture of `shown` from which the sums of all windows up to the end are even;
/// its size where there is no such window. The key frame is no part of any.
std::size_t beginOfEvenRest(std::span<const ShownPacket> shown) {
    std::int64_t sum = 0;
    std::int64_t smallest = 0;
    std::int64_t largest = 0;
    std::size_t begin = shown.size();
    for (std::size_t i = shown.size(); i-- > 1;) {
        sum += shown[i].bytes;
        if (i + windowPictures > shown.size()) {
            if (standsOut(shown, i)) break;
            continue;
        }
        if (i + windowPictures < shown.size()) sum -= shown[i + windowPictures].bytes;
        const bool isFirst = i + windowPictures == shown.size();
        smallest = isFirst ? sum : std::min(smallest, sum);
        largest = isFirst ? sum : std::max(largest, sum);
        if (!areEven(smallest, largest) || standsOut(shown, i)) break;
        begin = i;
    }
    return begin;
}

}  // namespace

std::size_t packetsBeforeQuiet(std::span<const PacketFacts> group) {
    if (group.size() <= windowPictures) return group.size();
    const std::vector<ShownPacket> shown = inOrderOfShowing(group);
    const std::size_t begin = beginOfEvenRest(shown);
    if (begin == 1) return 1;
    // The first window of the even rest may still hold the end of what was before it.
    const std::size_t quiet = std::min(shown.size(), begin + windowPictures);
    std::size_t count = 0;
    for (std::size_t i = 0; i < quiet; ++i)
        count = std::max(count, shown[i].decodedAs + 1);
    return count;
}

bool beginsEvenly(std::span<const PacketFacts> group) {
    const auto beginning = group.first(std::min(group.size(), 2 * windowPictures));
    return beginning.size() > windowPictures && packetsBeforeQuiet(beginning) == 1;
}

bool bringNoScene(std::span<const PacketFacts> rest, std::int64_t keyBytes) {
    return std::all_of(rest.begin(), rest.end(), [keyBytes](const PacketFacts& packet) {
        return packet.bytes * newDenominator <= keyBytes * newNumerator;
    });
}

}  // namespace reference_host::media
