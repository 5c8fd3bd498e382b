#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "autotrim/Output.h"
#include "tests/autotrim/TemporaryDirectory.h"

namespace autotrim {
namespace {

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string failureOf(const std::string& file) {
    try {
        ResultFile(file).write("text");
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(ResultFile, HoldsExactlyWhatIsWritten) {
    const TemporaryDirectory directory;
    const auto file = directory.path() / "result.json";
    std::ofstream(file) << "a longer text that was there before";
    ResultFile(file.string()).write("new\n");
    EXPECT_EQ(contentOf(file), "new\n");
}

TEST(ResultFile, KeepsTheOldTextUntilWritten) {
    const TemporaryDirectory directory;
    const auto file = directory.path() / "result.json";
    std::ofstream(file) << "old";
    { const ResultFile opened(file.string()); }
    EXPECT_EQ(contentOf(file), "old");
}

TEST(ResultFile, WritesToDevices) {
    EXPECT_EQ(failureOf("/dev/null"), "");
}

TEST(ResultFile, NamesWhatCannotBeOpened) {
    const TemporaryDirectory directory;
    const std::string missing = (directory.path() / "missing" / "result.json").string();
    EXPECT_EQ(failureOf(missing), "cannot write " + missing + ": No such file or directory");
    EXPECT_EQ(failureOf(directory.path().string()),
              "cannot write " + directory.path().string() + ": Is a directory");
}

TEST(ResultFile, NamesADeviceWithoutRoom) {
    EXPECT_EQ(failureOf("/dev/full"), "cannot write /dev/full: No space left on device");
}

}  // namespace
}  // namespace autotrim
