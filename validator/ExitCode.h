#pragma once

/// How the program ends.
namespace validator::exitCode {

constexpr int ok = 0;
constexpr int foundFaults = 1;    ///< a check failed or crashed
constexpr int wrongUse = 2;       ///< nothing was judged
constexpr int interrupted = 130;  ///< by SIGINT or another signal: nothing is reported

}  // namespace validator::exitCode
