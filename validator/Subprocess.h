#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace validator {

/// How a program ended.
struct Ending {
    bool isGood = false;   ///< by itself and with exit status 0
    bool isInTime = true;  ///< before the time limit; otherwise it was ended, with all it started
    std::string how;       ///< in words, as in "ended by signal 11 (Segmentation fault)"
};

/// Runs `command` (a program's path and its arguments, UTF-8) to its end, its standard output and
/// error together in the file `output`, without an input. What it has started and left behind is
/// ended, too, save, where there are process groups, what has left that of the program. Any thread.
/// Throws std::runtime_error, which names the program, when it cannot be started, and Interrupted
/// when isInterrupted() before it has ended; it is ended then.
Ending runProgram(const std::vector<std::string>& command, const std::filesystem::path& output,
                  std::chrono::milliseconds limit);

/// Returns the file of the running program. Throws std::runtime_error where that is unknown.
std::filesystem::path ownProgram();

}  // namespace validator
