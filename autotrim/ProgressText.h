#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace autotrim {

/// Where a run stands.
struct Progress {
    std::string file;        ///< the file being worked on, as given
    std::size_t number = 1;  ///< its place among the files, from 1
    std::size_t count = 1;   ///< the number of files
    int percent = 0;         ///< of the whole run, 0 to 100

    bool operator==(const Progress&) const = default;
};

/// Returns one line of at most `columns` columns, as far as there are any, for a terminal: the
/// file, a bar, the percentage and the time that is left, where that is known.
std::string progressBar(const Progress& progress, std::optional<std::chrono::seconds> left,
                        std::size_t columns);

/// Returns one line that says which file is being opened, likewise fitted into `columns`.
std::string openingLine(const Progress& progress, std::size_t columns);

/// Returns one JSON object on a line of its own.
std::string progressLine(const Progress& progress);

/// Estimates how long a run will go on, from the pace since its first sign of progress: what was
/// taken from a cache before that says nothing about the pace.
class RemainingTime {
public:
    using Clock = std::chrono::steady_clock;

    /// Takes in how far the run is at `now` and returns the estimate; none before there is a pace.
    std::optional<std::chrono::seconds> at(int percent, Clock::time_point now);

private:
    struct Mark {
        int percent;
        Clock::time_point time;
    };
    std::optional<Mark> first_;
    std::optional<Mark> latest_;
};

}  // namespace autotrim
