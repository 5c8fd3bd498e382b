#include "reference_host/media/KeyRhythm.h"

#include <algorithm>
#include <cstddef>

namespace reference_host::media {
namespace {

/// A length that one group in so many has is no chance.
constexpr std::ptrdiff_t groupsOfOneUsual = 6;

/// Two lengths are the same up to this part of them: timestamps are rounded, and a frame may be
/// missing.
constexpr std::int64_t partOfALength = 50;

/// A group that is shorter than the longest one by so small a part ends where a coder has to end it,
/// but for rounding; where a frame of ten seconds is missing, it has seen a scene begin.
constexpr std::int64_t partOfTheLongest = 300;

}  // namespace

KeyRhythm::KeyRhythm(const std::vector<std::int64_t>& keys) {
    for (std::size_t i = 1; i < keys.size(); ++i)
        lengths_.push_back(keys[i] - keys[i - 1]);
    std::sort(lengths_.begin(), lengths_.end());
}

bool KeyRhythm::isInTurn(std::int64_t key, std::int64_t nextKey) const {
    const std::int64_t length = nextKey - key;
    const std::int64_t slack = length / partOfALength;
    if (lengths_.empty() || length + length / partOfTheLongest >= lengths_.back()) return true;
    const auto first = std::lower_bound(lengths_.begin(), lengths_.end(), length - slack);
    const auto last = std::upper_bound(first, lengths_.end(), length + slack);
    // A group that is not even found itself is one between key frames that were left out.
    if (first == last) return true;
    const std::ptrdiff_t others = last - first - 1;
    return others * groupsOfOneUsual >= std::ssize(lengths_);
}

}  // namespace reference_host::media
