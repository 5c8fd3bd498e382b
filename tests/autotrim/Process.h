#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

#include "tests/autotrim/TemporaryDirectory.h"

namespace autotrim {

/// What a program that has ended leaves behind.
struct Ended {
    int exitCode = -1;  ///< -1 when a signal ended it
    std::string output;
    std::string errors;

    /// The lines of `errors`, without their ends.
    std::vector<std::string> errorLines() const;
};

/// Where a program's standard error goes.
enum class ErrorsTo { pipe, terminal, nowhere };

/// autotrim as its user runs it, in a process of its own. Its working directory is the directory of
/// the made clips.
class Process {
public:
    /// Starts it. The standard output goes to `outputFile`, or is kept when that is empty.
    explicit Process(const std::vector<std::string>& arguments, ErrorsTo errorsTo = ErrorsTo::pipe,
                     const std::filesystem::path& outputFile = {});
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Ends it, if it still runs.
    ~Process();

    /// Returns the next line of its standard error, without its end; empty at the end of all.
    std::string readErrorLine();

    /// Reads its standard error until `text` has come, or until its end.
    void readErrorsUntil(const std::string& text);

    /// The directory that is its HOME.
    const std::filesystem::path& home() const { return directory_.path(); }

    void send(int signal) const;

    /// Waits until it closes its standard error, as it does at its end, or until `time` is over.
    /// Returns whether it has.
    bool endsWithin(std::chrono::nanoseconds time);

    /// Waits for its end. `errors` is all of its standard error, lines read before included.
    Ended wait();

private:
    bool readErrors();

    TemporaryDirectory directory_;
    std::filesystem::path keptOutput_;
    int errorsEnd_ = -1;
    pid_t pid_ = -1;
    std::string errors_;
    std::size_t taken_ = 0;
};

/// Runs autotrim to its end.
Ended run(const std::vector<std::string>& arguments);

}  // namespace autotrim
