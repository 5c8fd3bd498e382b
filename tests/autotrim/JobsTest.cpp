#include <algorithm>
#include <chrono>
#include <csignal>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/CachedFootage.h"

namespace autotrim {
namespace {

using std::filesystem::path;

/// Several runs side by side, in the program as a whole.
class Jobs : public CachedFootage {
protected:
    /// Copies a made clip as `name`, with another time: that makes it another content.
    std::string otherThan(const std::string& clip, const std::string& name) const {
        const path copy = copyOf(clip, name);
        std::filesystem::last_write_time(
            copy, std::filesystem::last_write_time(copy) + std::chrono::seconds(++copies_));
        return copy.string();
    }

    /// Good files and bad ones, some of the same content. The second one is found to be bad sooner
    /// than the first.
    std::vector<std::string> allSorts() const {
        return {"truncated.mp4",
                "missing.mp4",
                "two.mp4",
                "photo.png",
                otherThan("scenes.mp4", "later.mp4"),
                "sound.wav",
                "damaged.mp4",
                "short.mp4",
                copyOf("two.mp4", "same.mp4").string(),
                "scenes.mp4",
                "two.mp4"};
    }

    /// Runs autotrim with `count` jobs.
    static Ended runWith(const std::string& count, std::vector<std::string> arguments,
                         const std::vector<std::string>& files) {
        arguments.insert(arguments.end(), {"--jobs", count});
        arguments.insert(arguments.end(), files.begin(), files.end());
        return run(arguments);
    }

    /// Returns what was said, save how many frames are damaged: that may differ by one, since it
    /// depends on the decoder's threads.
    static std::vector<std::string> withoutDamage(const Ended& ended) {
        std::vector<std::string> lines = ended.errorLines();
        for (std::string& line : lines)
            line = line.substr(0, line.find(" warning: damaged: "));
        return lines;
    }

private:
    mutable int copies_ = 0;
};

TEST_F(Jobs, GiveTheSameResultsHoweverManyThereAre) {
    const std::vector<std::string> files = allSorts();
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--no-cache", "--json", "-", "--photos"},
          {"--no-cache", "--kinds", "4,3,1"}}) {
        const Ended one = runWith("1", options, files);
        EXPECT_EQ(one.exitCode, exitSomeFailed);
        EXPECT_NE(one.output, "");
        EXPECT_EQ(one.errorLines().size(), 4U) << one.errors;
        EXPECT_EQ(one.errors.find("truncated.mp4"), 10U) << one.errors;
        for (const char* count : {"2", "5", "64"}) {
            const Ended several = runWith(count, options, files);
            EXPECT_EQ(several.exitCode, exitSomeFailed) << count;
            EXPECT_EQ(several.output, one.output) << count;
            EXPECT_EQ(withoutDamage(several), withoutDamage(one)) << count;
        }
    }
}

TEST_F(Jobs, ReportTheFilesInTheOrderGiven) {
    const std::vector<std::string> files = allSorts();
    const Json materials = materialsOf(runWith("5", {"--no-cache", "--json", "-"}, files));
    ASSERT_EQ(materials.size(), files.size());
    for (std::size_t i = 0; i < files.size(); ++i)
        EXPECT_EQ(materials[i]["file"], files[i]);
}

TEST_F(Jobs, AnalyseTheSameContentOnce) {
    const std::vector<std::string> files = {"two.mp4", copyOf("two.mp4", "same.mp4").string(),
                                            "scenes.mp4", "two.mp4"};
    const Ended ended = runWith("4", {"--cache", cache().string(), "--json", "-"}, files);
    EXPECT_EQ(ended.exitCode, exitAllDone) << ended.errors;
    const Json materials = materialsOf(ended);
    EXPECT_EQ(materials[0]["results"].size(), 2U);
    EXPECT_EQ(materials[1]["results"], materials[0]["results"]);
    EXPECT_EQ(materials[3]["results"], materials[0]["results"]);
    EXPECT_EQ(resultFilesIn(cache()).size(), 2U);
}

TEST_F(Jobs, TakeWhatOthersHaveKept) {
    const std::vector<std::string> files = {"two.mp4", "scenes.mp4",
                                            otherThan("two.mp4", "other.mp4"), "photo.png"};
    const auto analyseWith = [&](const char* count) {
        std::vector<std::string> arguments = {"--jobs", count};
        arguments.insert(arguments.end(), files.begin(), files.end());
        return analyse(arguments);
    };
    const Json first = analyseWith("3");
    EXPECT_EQ(first[2]["outcome"], "analysed");
    for (const char* count : {"1", "2", "4"})
        EXPECT_EQ(analyseWith(count), restored(first)) << count;
}

TEST_F(Jobs, ShareOneLogOfWholeLines) {
    const auto recordsLoggedBy = [this](const char* count) {
        const path log = file(std::string("log") + count);
        const Ended ended = runWith(count, {"--no-cache", "--log", log.string()},
                                    {"two.mp4", "scenes.mp4", "short.mp4"});
        EXPECT_EQ(ended.exitCode, exitAllDone);
        EXPECT_EQ(ended.errors, "");
        std::multiset<std::string> records;
        std::istringstream text(contentOf(log));
        for (std::string line; std::getline(text, line);) {
            const std::size_t record = line.find("finishedAllAnalysis: fileName: ");
            if (record != std::string::npos) records.insert(line.substr(record));
        }
        return records;
    };
    const std::multiset<std::string> one = recordsLoggedBy("1");
    EXPECT_EQ(one.size(), 7U);
    EXPECT_EQ(recordsLoggedBy("2"), one);
}

TEST_F(Jobs, ShowOneProgressThatNeverGoesBackwards) {
    const Ended ended =
        runWith("3", {"--no-cache", "--progress", "machine"},
                {"scenes.mp4", "two.mp4", otherThan("two.mp4", "other.mp4"), "short.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    int last = 0;
    std::set<std::string> files;
    for (const std::string& line : ended.errorLines()) {
        const Json object = Json::parse(line);
        EXPECT_EQ(object.size(), 2U);
        EXPECT_GE(object["percent"].get<int>(), last);
        last = object["percent"].get<int>();
        files.insert(object["file"]);
    }
    EXPECT_EQ(last, 100);
    EXPECT_GE(files.size(), 2U);
    EXPECT_EQ(files.count("short.mp4"), 0U);
}

class InterruptedJobs : public Jobs, public testing::WithParamInterface<int> {};

TEST_P(InterruptedJobs, KeepWhatWasFinished) {
    const std::string otherLong = otherThan("long.mp4", "long.mp4");
    Process process({"--json", "-", "--progress", "machine", "--jobs", "3", "--cache",
                     cache().string(), otherLong, "long.mp4", "two.mp4"});
    // The last file that is being worked on is shown: another one before it after its end.
    bool begun = false;
    for (std::string line = process.readErrorLine(); !line.empty();
         line = process.readErrorLine()) {
        const bool isLast = Json::parse(line)["file"] == "two.mp4";
        if (begun && !isLast) break;
        begun = begun || isLast;
    }
    EXPECT_TRUE(begun);
    process.send(GetParam());

    const Ended ended = process.wait();
    EXPECT_EQ(ended.exitCode, exitInterrupted);
    const std::vector<std::string> lines = ended.errorLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "autotrim: interrupted"), 1);
    EXPECT_EQ(lines.back(), "autotrim: interrupted");
    const Json materials = materialsOf(ended);
    ASSERT_EQ(materials.size(), 3U);
    for (const std::size_t unfinished : {0U, 1U}) {
        EXPECT_EQ(materials[unfinished]["outcome"], "failed");
        EXPECT_EQ(materials[unfinished]["error"], "interrupted");
        EXPECT_TRUE(materials[unfinished]["results"].empty());
    }
    EXPECT_EQ(materials[2]["outcome"], "analysed");
    EXPECT_EQ(withoutFaces(onlyCachedResult(cache())["result"]),
              withoutFaces(materials[2]["results"]));
}

INSTANTIATE_TEST_SUITE_P(Jobs, InterruptedJobs, testing::Values(SIGINT, SIGTERM),
                         [](const testing::TestParamInfo<int>& signal) {
                             return signal.param == SIGINT ? "BySigint" : "BySigterm";
                         });

}  // namespace
}  // namespace autotrim
