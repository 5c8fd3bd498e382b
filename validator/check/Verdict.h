#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace validator {

/// How a check ends.
enum class Outcome {
    pass,   ///< the claim holds
    warn,   ///< it holds, but something is to be looked at
    skip,   ///< it could not be tried
    fail,   ///< it does not hold
    crash,  ///< the process of the check ended by itself, or not at all
};

std::string_view nameOf(Outcome outcome);

/// What is known of a check that has ended.
struct Verdict {
    Outcome outcome = Outcome::pass;
    std::string what;      ///< of a failure: what was looked at
    std::string expected;  ///< of a failure: what it should have been
    std::string found;     ///< of a failure: what it was; of a crash: how the process ended
    std::string reason;    ///< of a skip: why
    std::vector<std::string> warnings;  ///< in the order in which they were made
};

/// Says whether the candidate failed or crashed.
bool isFault(const Verdict& verdict);

/// Returns the verdict as one JSON object.
std::string toJson(const Verdict& verdict);

/// Returns the verdict that `json` says; none where it is no such text.
std::optional<Verdict> verdictFrom(const std::string& json);

}  // namespace validator
