#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include "validator/Checker.h"
#include "validator/ScratchDirectory.h"

namespace validator {
namespace {

Verdict verdictOn(const std::string& id, const std::string& library) {
    Options options;
    options.library = library;
    options.timeLimit = std::chrono::milliseconds(60000);
    return Checker(ODD_PROCESSES).verdictOn(id, options);
}

/// Waits for `file` to be locked, or not. Returns whether it came to that in time.
bool becomesLocked(int file, bool isLocked) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < deadline) {
        const bool isFree = flock(file, LOCK_EX | LOCK_NB) == 0;
        if (isFree) flock(file, LOCK_UN);
        if (isFree != isLocked) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

TEST(CheckProcess, WaitsForNoVerdictInAPipe) {
    EXPECT_EQ(verdictOn("odd.ends-with-pipe", "candidate").outcome, Outcome::crash);
}

TEST(CheckProcess, SaysTheLastWordsOfMany) {
    const std::string found = verdictOn("odd.prints-last-words-behind-much", "candidate").found;
    EXPECT_TRUE(found.ends_with("x\\nlast words\"")) << found;
}

#ifdef __linux__
TEST(CheckProcess, EndsWithTheValidator) {
    const ScratchDirectory directory;
    const std::string library = (directory.path() / "lock").string();
    const int lock = open(library.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(lock, 0);
    const pid_t asker = fork();
    if (asker == 0) {
        // What it cannot delete any more goes with the directory of this test.
        setenv("TMPDIR", directory.path().c_str(), 1);
        verdictOn("odd.hangs-with-lock", library);
        _exit(0);
    }
    ASSERT_TRUE(becomesLocked(lock, true));
    kill(asker, SIGKILL);
    waitpid(asker, nullptr, 0);
    EXPECT_TRUE(becomesLocked(lock, false));
    close(lock);
}
#endif

}  // namespace
}  // namespace validator
