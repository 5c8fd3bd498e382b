#include <algorithm>
#include <utility>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "autotrim/JointProgress.h"

namespace autotrim {
namespace {

using Shown = std::vector<std::pair<std::size_t, int>>;

/// A progress that notes what it would show.
class Noted {
public:
    explicit Noted(const std::vector<std::int64_t>& work)
        : progress(work,
                   [this](std::size_t file, int percent) { shown.emplace_back(file, percent); }) {}

    Shown shown;
    JointProgress progress;
};

TEST(JointProgress, OfASingleRunIsItsOwn) {
    for (const std::int64_t work : {std::int64_t{0}, std::int64_t{7}, std::int64_t{1} << 50}) {
        Noted noted({work});
        Shown expected;
        for (int percent = 0; percent <= 100; ++percent) {
            noted.progress.report(0, 4, percent);
            expected.emplace_back(4, percent);
        }
        EXPECT_EQ(noted.shown, expected) << work;
    }
}

TEST(JointProgress, CountsRunsByTheirWork) {
    Noted noted({3000, 1000});
    noted.progress.report(0, 0, 50);
    noted.progress.report(1, 1, 50);
    noted.progress.report(1, 1, 100);
    noted.progress.report(0, 0, 99);
    noted.progress.report(0, 0, 100);
    EXPECT_EQ(noted.shown, (Shown{{0, 37}, {1, 50}, {1, 62}, {1, 99}, {1, 100}}));
}

TEST(JointProgress, ShowsTheLastFileThatIsBeingWorkedOn) {
    Noted noted({1, 1});
    noted.progress.report(0, 2, 0);
    noted.progress.report(1, 5, 0);
    noted.progress.report(0, 3, 0);
    noted.progress.report(0, 8, 0);
    noted.progress.end(0);
    noted.progress.report(1, 6, 0);
    EXPECT_EQ(noted.shown, (Shown{{2, 0}, {5, 0}, {5, 0}, {8, 0}, {6, 0}}));
}

TEST(JointProgress, KeepsWhatARunHasDoneThatEndedEarly) {
    Noted noted({1, 1});
    noted.progress.report(0, 0, 60);
    noted.progress.end(0);
    noted.progress.report(1, 1, 100);
    EXPECT_EQ(noted.shown, (Shown{{0, 30}, {1, 80}}));
}

RC_GTEST_PROP(JointProgressProperty, NeverGoesBackwardsAndEndsWithAll, ()) {
    const auto work = *rc::gen::nonEmpty(rc::gen::container<std::vector<std::int64_t>>(
        rc::gen::inRange<std::int64_t>(0, std::int64_t{1} << 42)));
    const auto steps = *rc::gen::container<std::vector<std::pair<std::size_t, int>>>(
        rc::gen::pair(rc::gen::inRange<std::size_t>(0, work.size()), rc::gen::inRange(0, 30)));
    Noted noted(work);
    std::vector<int> percents(work.size());
    for (const auto& [run, step] : steps) {
        percents[run] = std::min(99, percents[run] + step);
        noted.progress.report(run, run, percents[run]);
        RC_ASSERT(noted.shown.back().second < 100);
    }
    for (std::size_t run = 0; run < work.size(); ++run)
        noted.progress.report(run, run, 100);
    int last = 0;
    for (const auto& [file, percent] : noted.shown) {
        RC_ASSERT(percent >= last);
        last = percent;
    }
    RC_ASSERT(last == 100);
}

}  // namespace
}  // namespace autotrim
