#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

#include "host/logger.h"
#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/TemporaryDirectory.h"

namespace reference_host_tests {
namespace {

using KOR::IBsLogger;

std::string textOf(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

void writeLine(IBsLogger::Severity severity, std::string_view text) {
    KOR::LogStream* stream =
        loggerWrapper(0)->createLogStream(severity, "unit", 12, "KOR::function", "");
    if (stream == nullptr) return;
    stream->write(text.data(), text.size());
    stream->close();
}

// Tests run each in a process of its own, so this one sees the state before any log was opened.
TEST(Log, IsNotThereUntilItIsOpened) {
    EXPECT_EQ(loggerWrapper(0), nullptr);
    const TemporaryDirectory directory;
    reference_host::openLog(directory / "log");
    EXPECT_NE(loggerWrapper(0), nullptr);
    EXPECT_EQ(loggerWrapper(1), nullptr);
    EXPECT_EQ(loggerWrapper(-1), nullptr);
}

TEST(Log, WritesALineWithItsOrigin) {
    const TemporaryDirectory directory;
    reference_host::openLog(directory / "log");
    ASSERT_TRUE(loggerWrapper(0)->testSeverity(IBsLogger::info));
    writeLine(IBsLogger::info, "score {0} of %s 素材\n");
    const std::string text = textOf(directory / "log");
    EXPECT_TRUE(text.ends_with(" [info] unit:12 KOR::function: score {0} of %s 素材\n")) << text;
}

TEST(Log, LeavesDetailsOut) {
    const TemporaryDirectory directory;
    reference_host::openLog(directory / "log");
    EXPECT_FALSE(loggerWrapper(0)->testSeverity(IBsLogger::detail));
    writeLine(IBsLogger::detail, "not wanted");
    EXPECT_EQ(textOf(directory / "log"), "");
}

TEST(Log, AppendsToWhatStandsThere) {
    const TemporaryDirectory directory;
    std::ofstream(directory / "log") << "before\n";
    reference_host::openLog(directory / "log");
    writeLine(IBsLogger::error, "after");
    EXPECT_TRUE(textOf(directory / "log").starts_with("before\n"));
    EXPECT_TRUE(textOf(directory / "log").ends_with("after\n"));
}

TEST(Log, NamesAFileThatCannotBeWritten) {
    const TemporaryDirectory directory;
    std::ofstream(directory / "file") << "text";
    try {
        reference_host::openLog(directory / "file/log");
        FAIL() << "a log below a file";
    } catch (const std::runtime_error& failure) {
        EXPECT_NE(std::string(failure.what()).find("file/log"), std::string::npos);
    }
}

TEST(Log, MakesNoDirectory) {
    const TemporaryDirectory directory;
    try {
        reference_host::openLog(directory / "missing/log");
        FAIL() << "a log in a directory that is not there";
    } catch (const std::runtime_error& failure) {
        EXPECT_NE(std::string(failure.what()).find("missing/log"), std::string::npos);
    }
    EXPECT_FALSE(std::filesystem::exists(directory / "missing"));
}

TEST(Log, LinesOfSeveralThreadsStayWhole) {
    const TemporaryDirectory directory;
    reference_host::openLog(directory / "log");
    const auto work = [] {
        for (int i = 0; i < 100; ++i)
            writeLine(IBsLogger::warning, "one whole line");
    };
    std::thread other(work);
    work();
    other.join();
    std::ifstream file(directory / "log");
    int lines = 0;
    for (std::string line; std::getline(file, line); ++lines) {
        EXPECT_TRUE(line.ends_with(": one whole line")) << line;
    }
    EXPECT_EQ(lines, 200);
}

}  // namespace
}  // namespace reference_host_tests
