#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace validator {

/// Which side of the contract is judged.
enum class Side { component, host };

/// What the command line asks for.
struct Options {
    Side side = Side::component;
    std::string library;            ///< empty with `lists` only
    std::vector<std::string> only;  ///< ids or groups; empty: every check
    bool lists = false;             ///< print the checks instead of trying them
    bool json = false;
    bool verbose = false;  ///< name every check, not only those with something to say
    std::uint64_t seed = 1;
    std::chrono::milliseconds timeLimit{10000};  ///< of one check
    unsigned jobs = 1;                           ///< checks at once
    std::string video;                           ///< of hosts: see Occasion
    std::string photo;
};

/// What is to be said instead, after --help, --version or wrong use.
struct Answer {
    int exitCode;
    std::string text;  ///< for the standard output when `exitCode` is 0, else for the error
};

/// Reads a command line, `arguments` being what follows the program's name.
std::variant<Options, Answer> parseOptions(const std::vector<std::string>& arguments);

}  // namespace validator
