#include <chrono>

#include <gtest/gtest.h>

#include "validator/Checker.h"

namespace validator {
namespace {

// Of systems on which a process can be kept from writing long files.

TEST(PrintBound, EndsACandidateThatPrintsMuch) {
    Options options;
    options.library = "candidate";
    options.timeLimit = std::chrono::milliseconds(10000);
    EXPECT_EQ(Checker(ODD_CHECKS).verdictOn("odd.prints-much", options).outcome, Outcome::crash);
}

}  // namespace
}  // namespace validator
