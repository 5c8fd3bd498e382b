#pragma once

#include <cstdint>
#include <vector>

namespace reference_host::media {

/// Knows which key frames come in turn, as often as the coder was told to make one, and which do
/// not: coders that look for scenes begin a group of pictures with each.
class KeyRhythm {
public:
    KeyRhythm() = default;

    /// `keys` are the timestamps of all key frames in ascending order, or of every second, fourth
    /// and so on.
    explicit KeyRhythm(const std::vector<std::int64_t>& keys);

    /// Says whether a group of pictures from one key frame to the next is of a usual length; true
    /// where nothing is known.
    bool isInTurn(std::int64_t key, std::int64_t nextKey) const;

private:
    /// The lengths of all groups, ascending.
    std::vector<std::int64_t> lengths_;
};

}  // namespace reference_host::media
