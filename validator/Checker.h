#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "validator/Options.h"
#include "validator/check/Verdict.h"

namespace validator {

/// A check as it is listed.
struct ListedCheck {
    std::string id;
    std::string claim;
};

/// Returns the program that holds the checks of one side: it is beside this one, or where an
/// installation keeps it. Throws std::runtime_error, which names it, where it is missing.
std::filesystem::path programOf(Side side);

/// A program that holds checks (validator/check/checker.h). Each check is tried in a process of its
/// own, so that nothing a candidate does reaches this one. Any thread.
class Checker {
public:
    explicit Checker(std::filesystem::path program);

    /// Returns all checks in their order. Throws std::runtime_error when they cannot be listed.
    std::vector<ListedCheck> list() const;

    /// Tries one check. Never throws for what a candidate does; what keeps the check from being
    /// tried is told as a crash. Throws Interrupted when isInterrupted() before it has ended.
    Verdict verdictOn(const std::string& id, const Options& options) const;

private:
    /// Throws std::runtime_error where there can be no directory or no process for the check.
    Verdict verdictOfProcess(const std::string& id, const Options& options) const;

    std::filesystem::path program_;
};

}  // namespace validator
