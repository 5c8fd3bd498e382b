#include <chrono>

#include <gtest/gtest.h>

#include "validator/Checker.h"

namespace validator {
namespace {

// Of systems on which the memory of a process can be bounded, where no sanitizer needs more.

TEST(MemoryBound, LeavesTheRestOfTheMachineAlone) {
    Options options;
    options.library = "candidate";
    options.timeLimit = std::chrono::milliseconds(60000);
    EXPECT_EQ(Checker(ODD_CHECKS).verdictOn("odd.takes-much-memory", options).found,
              "\"std::bad_alloc\"");
}

}  // namespace
}  // namespace validator
