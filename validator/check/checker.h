#pragma once

#include <vector>

#include "validator/check/Check.h"
#include "validator/check/Verdict.h"

namespace validator {

/// Tries one check in this process.
Verdict tried(const RunnableCheck& check, const Occasion& occasion);

/// The `main` of a program that holds checks.
///
///   PROGRAM --list
///       prints each check as a line: its id, a tab, its claim.
///   PROGRAM --run ID --library FILE --scratch DIRECTORY [--seed N] [--video FILE] [--photo FILE]
///       tries the check and writes its verdict to the file `verdict` in the directory.
///
/// Returns 0 when that was done, whatever the verdict is, and 2 for wrong use.
int checkerMain(int argumentCount, char** arguments, const std::vector<RunnableCheck>& checks);

/// The file of the verdict in the directory given to a check.
constexpr const char* verdictFile = "verdict";

}  // namespace validator
