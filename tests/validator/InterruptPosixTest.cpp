#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "validator/ScratchDirectory.h"

extern char** environ;

namespace validator {
namespace {

using Clock = std::chrono::steady_clock;

/// The validator in a process of its own, judging a library that never finishes loading, with a
/// directory of its own for what it makes.
class Interrupt : public testing::Test {
protected:
    void SetUp() override {
        std::vector<std::string> settings = {"TMPDIR=" + place_.path().string()};
        for (char** each = environ; *each != nullptr; ++each) {
            if (!std::string(*each).starts_with("TMPDIR=")) settings.emplace_back(*each);
        }
        std::vector<std::string> command = {
            VALIDATOR, "host", HANGING_LIBRARY, "--only", "geometry", "--timeout", "60"};
        posix_spawn_file_actions_t streams;
        posix_spawn_file_actions_init(&streams);
        posix_spawn_file_actions_addopen(&streams, STDERR_FILENO, errors().c_str(),
                                         O_WRONLY | O_CREAT, 0600);
        ASSERT_EQ(posix_spawn(&process_, VALIDATOR, &streams, nullptr, pointers(command).data(),
                              pointers(settings).data()),
                  0);
        posix_spawn_file_actions_destroy(&streams);
    }

    static std::vector<char*> pointers(std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (std::string& text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    }

    std::filesystem::path errors() const { return place_.path() / "errors"; }

    /// The process of the check that hangs, as the library has written it down; 0 while it has not.
    pid_t hangingCheck() const {
        // Directories come and go meanwhile.
        std::error_code problem;
        std::filesystem::recursive_directory_iterator entry(place_.path(), problem);
        for (; !problem && entry != end(entry); entry.increment(problem)) {
            pid_t check = 0;
            if (entry->path().filename() == "hanging" && std::ifstream(entry->path()) >> check)
                return check;
        }
        return 0;
    }

    pid_t waitForCheck() const {
        const auto end = Clock::now() + std::chrono::seconds(30);
        while (hangingCheck() == 0 && Clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return hangingCheck();
    }

    int exitCode() const {
        int status = 0;
        waitpid(process_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    ScratchDirectory place_;
    pid_t process_ = 0;
};

TEST_F(Interrupt, EndsTheCheckAndLeavesNothing) {
    const pid_t check = waitForCheck();
    ASSERT_NE(check, 0);
    kill(process_, SIGINT);
    EXPECT_EQ(exitCode(), 130);
    EXPECT_EQ(kill(check, 0), -1) << "the check still runs";
    std::filesystem::remove(errors());
    EXPECT_TRUE(std::filesystem::is_empty(place_.path()));
}

TEST_F(Interrupt, SaysThatItWasInterrupted) {
    ASSERT_NE(waitForCheck(), 0);
    kill(process_, SIGTERM);
    EXPECT_EQ(exitCode(), 130);
    std::ifstream file(errors());
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line, "material-analysis-validator: interrupted");
}

}  // namespace
}  // namespace validator
