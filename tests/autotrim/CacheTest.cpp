#include <algorithm>
#include <fstream>

#include <gtest/gtest.h>

#include "autotrim/CacheTable.h"
#include "autotrim/ExitCode.h"
#include "tests/autotrim/CachedFootage.h"

namespace autotrim {
namespace {

using std::filesystem::path;

TEST(ByteSize, HasOneDecimalInItsUnit) {
    EXPECT_EQ(byteSize(0), "0 B");
    EXPECT_EQ(byteSize(1023), "1023 B");
    EXPECT_EQ(byteSize(1024), "1.0 KiB");
    EXPECT_EQ(byteSize(1536), "1.5 KiB");
    EXPECT_EQ(byteSize(1 << 20), "1.0 MiB");
    EXPECT_EQ(byteSize(std::uintmax_t{5} << 40), "5.0 TiB");
    EXPECT_EQ(byteSize(UINTMAX_MAX), "16.0 EiB");
}

TEST(ByteSize, NeverShowsAFullStep) {
    EXPECT_EQ(byteSize((1 << 20) - 1), "1.0 MiB");
    EXPECT_EQ(byteSize((1 << 20) - 103), "1023.9 KiB");
}

TEST(CacheTable, ListsWhatIsKeptOfEachFile) {
    EXPECT_EQ(cacheTable({{"/clips/again.mkv", 1536, true}, {"/clips/portrait.jpg", 271, false}}),
              "        kept  result  file\n"
              "     1.5 KiB  yes     /clips/again.mkv\n"
              "       271 B  no      /clips/portrait.jpg\n"
              "kept of 2 files: 1.8 KiB\n");
}

TEST(CacheTable, ShowsNamesHarmlessly) {
    EXPECT_EQ(cacheTable({{"", 1, false}, {"/\x1B[2J\n\xFF", 1, true}}),
              "        kept  result  file\n"
              "         1 B  no      (unknown)\n"
              "         1 B  yes     /\\x1B[2J\\x0A\\xFF\n"
              "kept of 2 files: 2 B\n");
}

TEST(CacheTable, CountsOneFileAsOne) {
    EXPECT_EQ(sumOfKept(1, 812), "1 file: 812 B");
    EXPECT_EQ(sumOfKept(0, 0), "0 files: 0 B");
}

class CacheProgram : public CachedFootage {
protected:
    Ended list() const { return run({"cache", "list", "--cache", cache().string()}); }
    Ended clear() const { return run({"cache", "clear", "--cache", cache().string()}); }

    std::string sumOf(std::size_t files) const {
        std::uintmax_t bytes = 0;
        for (const path& file : kept())
            bytes += std::filesystem::file_size(file);
        return sumOfKept(files, bytes) + "\n";
    }
};

void expectDone(const Ended& ended, const std::string& output) {
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.output, output);
    EXPECT_EQ(ended.errors, "");
}

TEST_F(CacheProgram, ListsTheFilesOfEarlierRuns) {
    const path clip = copyOf("two.mp4", "clip.mp4");
    const path photo = copyOf("photo.png", "photo.png");
    analyse({clip.string(), photo.string()});
    const Ended ended = list();
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, "");
    EXPECT_NE(ended.output.find("  yes     " + clip.string() + "\n"), std::string::npos);
    EXPECT_NE(ended.output.find("  no      " + photo.string() + "\n"), std::string::npos);
    EXPECT_NE(ended.output.find("\nkept of " + sumOf(2)), std::string::npos) << ended.output;
}

TEST_F(CacheProgram, ListsAMovedFileUnderItsNewName) {
    const path before = copyOf("two.mp4", "before.mp4");
    analyse({before.string()});
    std::filesystem::rename(before, file("after.mp4"));
    analyse({file("after.mp4").string()});
    const std::string output = list().output;
    EXPECT_EQ(output.find("before.mp4"), std::string::npos) << output;
    EXPECT_NE(output.find(file("after.mp4").string()), std::string::npos) << output;
}

TEST_F(CacheProgram, ClearsWhatTheRunsHaveKept) {
    const Json first = analyse({"two.mp4", "photo.png"});
    const std::string sum = sumOf(2);
    expectDone(clear(), "deleted what was kept of " + sum);
    EXPECT_TRUE(std::filesystem::is_empty(cache()));
    expectDone(list(), "nothing is kept in " + cache().string() + "\n");
    EXPECT_EQ(analyse({"two.mp4", "photo.png"}), first);
}

TEST_F(CacheProgram, FindsNothingInAnEmptyOrMissingCache) {
    const std::string nothing = "nothing is kept in ";
    expectDone(list(), nothing + cache().string() + "\n");
    expectDone(clear(), nothing + cache().string() + "\n");
    const std::string missing = (cache() / "missing").string();
    for (const char* action : {"list", "clear"})
        expectDone(run({"cache", action, "--cache", missing}), nothing + missing + "\n");
    EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(CacheProgram, UsesTheUsersCacheDirectory) {
    Process process({"cache", "list"});
    expectDone(process.wait(),
               "nothing is kept in " + (process.home() / ".cache" / "autotrim").string() + "\n");
}

TEST_F(CacheProgram, LeavesEverythingElse) {
    analyse({"two.mp4"});
    const path keptDirectory = resultFilesIn(cache())[0].parent_path().parent_path();
    std::ofstream(cache() / "diary.txt") << "mine";
    std::ofstream(keptDirectory / "notes.txt") << "mine";
    std::filesystem::create_directory_symlink(cache(), cache() / "loop");
    EXPECT_NE(list().output.find("kept of 1 file: "), std::string::npos);
    clear();
    // The directory's name is a key, which comes anywhere in the alphabet.
    std::vector<path> others = {keptDirectory / "notes.txt", cache() / "diary.txt",
                                cache() / "loop"};
    std::sort(others.begin(), others.end());
    EXPECT_EQ(kept(), others);
}

TEST_F(CacheProgram, ExitsWithOneWhereNothingCanBeRead) {
    std::ofstream(file("file")) << "no directory";
    for (const char* action : {"list", "clear"}) {
        const Ended ended = run({"cache", action, "--cache", file("file").string()});
        EXPECT_EQ(ended.exitCode, exitSomeFailed);
        EXPECT_EQ(ended.output, "");
        ASSERT_EQ(ended.errorLines().size(), 1U) << ended.errors;
        EXPECT_NE(ended.errors.find(file("file").string()), std::string::npos) << ended.errors;
    }
}

TEST_F(CacheProgram, ExitsWithTwoAfterWrongUse) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"cache"}, {"cache", "show"}, {"cache", "list", "x"}}) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exitCode, exitWrongUse);
        EXPECT_EQ(ended.output, "");
        EXPECT_EQ(ended.errorLines().size(), 2U) << ended.errors;
    }
}

TEST_F(CacheProgram, ExitsWithOneWhenOutputIsFull) {
    analyse({"two.mp4"});
    const Ended ended =
        Process({"cache", "list", "--cache", cache().string()}, ErrorsTo::pipe, "/dev/full").wait();
    EXPECT_EQ(ended.exitCode, exitSomeFailed);
    EXPECT_EQ(ended.errorLines().size(), 1U) << ended.errors;
}

}  // namespace
}  // namespace autotrim
