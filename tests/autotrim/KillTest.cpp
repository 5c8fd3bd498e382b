#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/CachedFootage.h"
#include "tests/autotrim/RealFootage.h"

namespace autotrim {
namespace {

using std::chrono::nanoseconds;
using std::filesystem::path;

/// How many kills there are, and where: MATERIAL_ANALYSIS_KILLS and MATERIAL_ANALYSIS_SEED say so
/// where they are set.
std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

/// The exit code of a run that a signal has ended.
constexpr int wasKilled = -1;

/// What a run is doing, as its standard error shows.
enum class Phase { opening, analysis, end };

Phase phaseOf(const Ended& killed) {
    const std::vector<std::string> lines = killed.errorLines();
    if (lines.empty()) return Phase::opening;
    return lines.back().ends_with("\"percent\":100}") ? Phase::end : Phase::analysis;
}

/// Runs autotrim on the same files again and again, kills it at random moments, and holds what is
/// kept and reported in between against a run that nothing disturbs.
class Killer {
public:
    Killer(std::vector<std::string> files, path cacheRoot, std::uint64_t jobs)
        : files_(std::move(files)),
          cacheRoot_(std::move(cacheRoot)),
          jobs_(jobs),
          seed_(fromEnvironment("MATERIAL_ANALYSIS_SEED", std::random_device()())),
          random_(seed_) {}

    void killAndCompare(std::uint64_t kills) {
        const testing::ScopedTrace trace(__FILE__, __LINE__,
                                         "MATERIAL_ANALYSIS_SEED=" + std::to_string(seed_));
        runUndisturbed();
        while (!testing::Test::HasFailure() && kills_ < kills)
            runToTheEnd(kills);
        std::cout << "killed " << kills_ << " runs: " << hits_[Phase::opening]
                  << " while opening files, " << hits_[Phase::analysis] << " in the analysis, "
                  << hits_[Phase::end] << " at the end; " << rounds_ << " rounds, "
                  << restoredAfterKills_ << " videos restored after kills, " << litter_
                  << " unfinished files left; MATERIAL_ANALYSIS_SEED=" << seed_ << '\n';
    }

private:
    using Kept = std::map<path, std::filesystem::file_time_type>;

    std::vector<std::string> arguments(const path& cacheRoot) const {
        std::vector<std::string> all = {"--cache", cacheRoot.string(),   "--json",
                                        "-",       "--progress",         "machine",
                                        "--jobs",  std::to_string(jobs_)};
        all.insert(all.end(), files_.begin(), files_.end());
        return all;
    }

    void runUndisturbed() {
        const TemporaryDirectory cache;
        const auto begin = std::chrono::steady_clock::now();
        const Ended ended = run(arguments(cache.path()));
        duration_ = std::chrono::steady_clock::now() - begin;
        ASSERT_EQ(ended.exitCode, exitAllDone) << ended.errors;
        expected_ = restored(materialsOf(ended));
    }

    /// From an empty cache until a run comes to its end before it is killed.
    void runToTheEnd(std::uint64_t kills) {
        ++rounds_;
        Kept finished;
        for (bool isOver = false; !isOver && !testing::Test::HasFailure();) {
            Process process(arguments(cacheRoot_));
            const bool isSpared = kills_ == kills;
            if (!isSpared && !process.endsWithin(someMoment())) process.send(SIGKILL);
            const Ended ended = process.wait();
            isOver = ended.exitCode != wasKilled;
            if (isOver) {
                compare(ended, finished.size());
            } else {
                ++kills_;
                ++hits_[phaseOf(ended)];
            }
            finished = keptBeyond(finished);
        }
        clear();
    }

    /// Returns what is kept now. What was finished before is still what it was: it has not been
    /// analysed again.
    Kept keptBeyond(const Kept& finished) const {
        Kept kept = keptResults();
        for (const auto& [file, time] : finished) {
            EXPECT_EQ(kept.count(file), 1U) << file;
            EXPECT_EQ(kept[file], time) << file;
        }
        return kept;
    }

    /// Each moment of an undisturbed run is as likely as any other.
    nanoseconds someMoment() {
        return nanoseconds(
            std::uniform_int_distribution<nanoseconds::rep>(0, duration_.count())(random_));
    }

    /// Returns the result files that are whole, and when each was written.
    Kept keptResults() const {
        Kept kept;
        for (const path& file : resultFilesIn(cacheRoot_)) {
            if (Json::accept(contentOf(file))) kept[file] = std::filesystem::last_write_time(file);
        }
        return kept;
    }

    void compare(const Ended& ended, std::size_t finishedBefore) {
        EXPECT_EQ(ended.exitCode, exitAllDone) << ended.errors;
        const Json materials = materialsOf(ended);
        EXPECT_EQ(restored(materials), expected_);
        const auto isRestored = [](const Json& entry) { return entry["outcome"] == "restored"; };
        const auto count = std::count_if(materials.begin(), materials.end(), isRestored);
        EXPECT_EQ(static_cast<std::size_t>(count), finishedBefore);
        restoredAfterKills_ += finishedBefore;
    }

    /// Each kill leaves one unfinished file of each job at most, which goes with the rest.
    void clear() {
        std::size_t unfinished = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(cacheRoot_)) {
            const path name = entry.path().filename();
            unfinished += entry.is_regular_file() && name != "facts.json" && name != "result.json";
        }
        EXPECT_LE(unfinished, kills_ * jobs_);
        litter_ += unfinished;
        run({"cache", "clear", "--cache", cacheRoot_.string()});
        EXPECT_TRUE(std::filesystem::is_empty(cacheRoot_));
    }

    std::vector<std::string> files_;
    path cacheRoot_;
    std::uint64_t jobs_;
    std::uint64_t seed_;
    std::mt19937_64 random_;
    nanoseconds duration_{0};
    Json expected_;
    std::uint64_t kills_ = 0;
    std::map<Phase, std::size_t> hits_;
    std::size_t rounds_ = 0;
    std::size_t restoredAfterKills_ = 0;
    std::size_t litter_ = 0;
};

/// Kills need moments in time: these are the only tests that wait by the clock. None depends on
/// where a kill hits.
class KilledProgram : public CachedFootage, public testing::WithParamInterface<std::uint64_t> {};

TEST_P(KilledProgram, LosesNoFinishedVideo) {
    std::vector<std::string> files;
    for (const std::string clip : {"two.mp4", "short.mp4", "scenes.mp4", "photo.png"})
        files.push_back(copyOf(clip, clip).string());
    for (int i = 1; i <= 4; ++i) {
        const path copy = copyOf("two.mp4", std::to_string(i) + ".mp4");
        // Another time makes it another content.
        std::filesystem::last_write_time(
            copy, std::filesystem::last_write_time(copy) + std::chrono::seconds(i));
        files.push_back(copy.string());
    }
    Killer(files, cache(), GetParam())
        .killAndCompare(fromEnvironment("MATERIAL_ANALYSIS_KILLS", 8));
}

INSTANTIATE_TEST_SUITE_P(Jobs, KilledProgram, testing::Values(1, 3),
                         testing::PrintToStringParamName());

class KilledRealFootage : public RealFootage {
protected:
    TemporaryDirectory cache_;
};

TEST_F(KilledRealFootage, LosesNoFinishedVideo) {
    const std::uint64_t kills = fromEnvironment("MATERIAL_ANALYSIS_KILLS", 0);
    if (kills == 0) GTEST_SKIP() << "MATERIAL_ANALYSIS_KILLS is not set";
    std::vector<std::string> files;
    for (const path& video : videos())
        files.push_back(video.string());
    ASSERT_FALSE(files.empty());
    Killer(files, cache_.path(), 2).killAndCompare(kills);
}

}  // namespace
}  // namespace autotrim
