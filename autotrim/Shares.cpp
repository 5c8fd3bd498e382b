#include "autotrim/Shares.h"

#include <algorithm>
#include <numeric>

namespace autotrim {
namespace {

/// Returns the indices of `work`, those of the largest first.
Share byWork(const std::vector<std::int64_t>& work) {
    Share indices(work.size());
    std::iota(indices.begin(), indices.end(), std::size_t{0});
    std::stable_sort(indices.begin(), indices.end(),
                     [&work](std::size_t a, std::size_t b) { return work[a] > work[b]; });
    return indices;
}

}  // namespace

std::vector<Share> dealOut(const std::vector<std::int64_t>& work, std::size_t count) {
    const auto worth = static_cast<std::size_t>(
        std::count_if(work.begin(), work.end(), [](std::int64_t each) { return each > 0; }));
    std::vector<Share> shares(std::clamp<std::size_t>(worth, 1, count));
    std::vector<std::int64_t> loads(shares.size());
    for (const std::size_t index : byWork(work)) {
        const auto least = std::min_element(loads.begin(), loads.end());
        *least += work[index];
        shares[static_cast<std::size_t>(least - loads.begin())].push_back(index);
    }
    for (Share& share : shares)
        std::sort(share.begin(), share.end());
    return shares;
}

}  // namespace autotrim
