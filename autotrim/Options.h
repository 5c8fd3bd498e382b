#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "autotrim/Kinds.h"

namespace autotrim {

/// How the progress of a run is shown, always on the standard error.
enum class ProgressStyle {
    automatic,  ///< a bar on a terminal, otherwise nothing
    machine,    ///< one JSON object per line
    none,
};

/// What the command line asks for, when it asks for a run.
struct Options {
    std::vector<std::string> files;  ///< as given; at least one
    Kinds kinds = {6, 7};
    std::int32_t minSceneSeconds = 2;   ///< 0 or more
    std::int32_t minLengthSeconds = 2;  ///< 0 or more
    double threshold = 3.0;             ///< finite, above 0
    std::filesystem::path cacheRoot;    ///< empty: nothing is kept, nor taken from what was
    std::optional<std::size_t> jobs;    ///< 1 to maxJobs; unset: as many as help
    bool photos = false;                ///< whether photos are analysed, too
    std::optional<std::filesystem::path> faceModel;
    std::optional<std::string> json;  ///< a file's name, or jsonToStdout
    ProgressStyle progress = ProgressStyle::automatic;
    std::optional<std::filesystem::path> log;
};

/// The most runs side by side that can be asked for: each takes threads and memory of its own.
constexpr std::size_t maxJobs = 64;

/// The name that sends the JSON to the standard output.
constexpr const char* jsonToStdout = "-";

/// What the command line asks for, when it begins with "cache".
struct CacheCommand {
    enum class Action { list, clear };
    Action action = Action::list;
    std::filesystem::path cacheRoot;  ///< never empty
};

/// What is to be said instead of all this, after --help, --version or wrong use.
struct Answer {
    int exitCode;
    std::string
        text;  ///< whole lines, for the standard output when `exitCode` is 0, else the error
};

/// The environment variables that have a say; empty where they are not set.
struct Environment {
    std::string cacheHome;  ///< XDG_CACHE_HOME; counts when it is absolute
    std::string home;       ///< HOME
};

/// Reads a command line, `arguments` being what follows the program's name. Only the very first of
/// them makes it a CacheCommand: everywhere else "cache" is a file.
std::variant<Options, CacheCommand, Answer> parseOptions(const std::vector<std::string>& arguments,
                                                         const Environment& environment);

}  // namespace autotrim
