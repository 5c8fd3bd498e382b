#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace autotrim {

/// What one of several runs side by side has to do: indices, ascending.
using Share = std::vector<std::size_t>;

/// Deals things out to runs; `work` tells how much each of them takes, 0 or more, in any unit. Each
/// gets into exactly one share, the largest first into that which is the smallest by then. Equal
/// calls have equal results.
///
/// There are at most `count` shares, which is 1 or more, and none is without work, save that there
/// always is one.
std::vector<Share> dealOut(const std::vector<std::int64_t>& work, std::size_t count);

}  // namespace autotrim
