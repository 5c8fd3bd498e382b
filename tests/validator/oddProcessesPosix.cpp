#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "validator/check/checker.h"
#include "validator/check/expect.h"

/// A program that holds checks which do what only processes of such systems can.
namespace validator {
namespace {

/// Locks the file that stands for the candidate, and never ends.
[[noreturn]] void hangWithLock(const Occasion& occasion) {
    const int file = open(occasion.library.c_str(), O_RDWR);
    if (file < 0 || flock(file, LOCK_EX) != 0) std::abort();
    while (true)
        pause();
}

/// Puts a pipe in the place of the verdict, which no one ever writes to.
void endWithPipe(const Occasion& occasion) {
    if (mkfifo((occasion.scratch / verdictFile).c_str(), 0600) != 0) std::abort();
    std::_Exit(0);
}

const std::vector<RunnableCheck> checks = {
    {"odd.hangs-with-lock", "The process comes to its end.", hangWithLock},
    {"odd.ends-with-pipe", "The verdict is a file.", endWithPipe},
    {"odd.prints-last-words-behind-much", "Nothing is printed.",
     [](const Occasion&) {
         const std::string text(1 << 20, 'x');
         for (int i = 0; i < 8; ++i)
             std::puts(text.c_str());
         std::puts("last words");
         std::fflush(stdout);
         std::abort();
     }},
};

}  // namespace
}  // namespace validator

int main(int argumentCount, char** arguments) {
    return validator::checkerMain(argumentCount, arguments, validator::checks);
}
