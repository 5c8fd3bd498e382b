#include <gtest/gtest.h>

#include "autotrim/Session.h"
#include "tests/autotrim/CachedFootage.h"

namespace autotrim {
namespace {

using std::filesystem::path;

/// Takes `victim` away when the second file is opened: the first one is a material by then, and has
/// not been analysed yet.
class Thief final : public ProgressDisplay {
public:
    explicit Thief(path victim) : victim_(std::move(victim)) {}

    void showOpening(const Progress& progress) override {
        if (progress.number == 2) std::filesystem::remove(victim_);
    }
    void show(const Progress&) override {}
    void clear() override {}

private:
    path victim_;
};

using Session = CachedFootage;

TEST_F(Session, KeepsNoResultOfAVideoThatFailed) {
    const path clip = copyOf("two.mp4", "clip.mp4");
    Options options;
    options.files = {clip.string(), copyOf("scenes.mp4", "scenes.mp4").string()};
    options.cacheRoot = cache();
    options.jobs = 1;
    Thief thief(clip);
    const Report report = autotrim::analyse(options, {}, thief);
    EXPECT_EQ(report.files.at(0).outcome, Outcome::failed);
    EXPECT_EQ(report.files.at(0).error, "there is no such file");
    EXPECT_EQ(report.files.at(1).outcome, Outcome::analysed);
    EXPECT_EQ(resultFilesIn(cache()).size(), 1U);

    copyOf("two.mp4", "clip.mp4");
    const Json entry = analyse({clip.string()})[0];
    EXPECT_EQ(entry["outcome"], "analysed");
    EXPECT_EQ(entry["results"].size(), 2U);
}

}  // namespace
}  // namespace autotrim
