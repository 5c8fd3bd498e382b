#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "autotrim/Shares.h"

namespace autotrim {
namespace {

using Shares = std::vector<Share>;
using Work = std::vector<std::int64_t>;

TEST(Shares, GiveTheLargestFirstToWhomeverHasTheLeast) {
    EXPECT_EQ(dealOut({3, 9, 4, 2, 5}, 2), (Shares{{0, 1}, {2, 3, 4}}));
    EXPECT_EQ(dealOut({1, 1, 1, 7}, 2), (Shares{{3}, {0, 1, 2}}));
}

TEST(Shares, KeepTheOrderAmongEquals) {
    EXPECT_EQ(dealOut({5, 5, 5, 5}, 3), (Shares{{0, 3}, {1}, {2}}));
}

TEST(Shares, AreNoMoreThanThereIsWorkFor) {
    EXPECT_EQ(dealOut({4, 2}, 5), (Shares{{0}, {1}}));
    EXPECT_EQ(dealOut({0, 2, 0}, 5), (Shares{{0, 1, 2}}));
    EXPECT_EQ(dealOut({0, 0}, 5), (Shares{{0, 1}}));
}

TEST(Shares, AreOneEvenOfNothing) {
    EXPECT_EQ(dealOut({}, 4), Shares(1));
}

TEST(Shares, AreEverythingInOrderForASingleRun) {
    EXPECT_EQ(dealOut({1, 0, 9, 4}, 1), (Shares{{0, 1, 2, 3}}));
}

std::int64_t loadOf(const Share& share, const Work& work) {
    return std::accumulate(share.begin(), share.end(), std::int64_t{0},
                           [&work](std::int64_t sum, std::size_t i) { return sum + work[i]; });
}

Work someWork() {
    return *rc::gen::container<Work>(rc::gen::inRange<std::int64_t>(0, std::int64_t{1} << 42));
}

std::size_t someCount() {
    return *rc::gen::inRange<std::size_t>(1, 65);
}

RC_GTEST_PROP(SharesProperty, HaveEachThingOnceAndInOrder, ()) {
    const Work work = someWork();
    const Shares shares = dealOut(work, someCount());
    Share all;
    for (const Share& share : shares) {
        RC_ASSERT(std::is_sorted(share.begin(), share.end()));
        all.insert(all.end(), share.begin(), share.end());
    }
    std::sort(all.begin(), all.end());
    Share expected(work.size());
    std::iota(expected.begin(), expected.end(), std::size_t{0});
    RC_ASSERT(all == expected);
}

RC_GTEST_PROP(SharesProperty, AllHaveWork, ()) {
    const Work work = someWork();
    const std::size_t count = someCount();
    const Shares shares = dealOut(work, count);
    RC_ASSERT(!shares.empty());
    RC_ASSERT(shares.size() <= count);
    for (const Share& share : shares)
        RC_ASSERT(shares.size() == 1 || loadOf(share, work) > 0);
}

RC_GTEST_PROP(SharesProperty, DifferByOneThingAtMost, ()) {
    const Work work = someWork();
    std::vector<std::int64_t> loads;
    for (const Share& share : dealOut(work, someCount()))
        loads.push_back(loadOf(share, work));
    const auto [least, most] = std::minmax_element(loads.begin(), loads.end());
    const std::int64_t largest = work.empty() ? 0 : *std::max_element(work.begin(), work.end());
    RC_ASSERT(*most - *least <= largest);
}

}  // namespace
}  // namespace autotrim
