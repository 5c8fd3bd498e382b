#pragma once

#include <vector>

#include "validator/Checker.h"
#include "validator/Options.h"

namespace validator {

/// A check that was tried.
struct Judged {
    ListedCheck check;
    Verdict verdict;
};

/// Returns those of `checks` that `only` names by id or group, in their order; all where it is
/// empty. Throws std::runtime_error for a name that names none.
std::vector<ListedCheck> chosen(const std::vector<ListedCheck>& checks,
                                const std::vector<std::string>& only);

/// Tries the checks, some at once, and returns them in their order.
std::vector<Judged> judge(const Checker& checker, const std::vector<ListedCheck>& checks,
                          const Options& options);

}  // namespace validator
