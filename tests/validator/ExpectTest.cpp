#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "validator/check/expect.h"

namespace validator {
namespace {

/// What a failure of `action` says, in one line; empty where it does not fail.
std::string failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what + ": " + failure.expected + ", not " + failure.found;
    }
    return "";
}

const std::vector<int> none;
const std::vector<int> three = {7, 8, 9};

TEST(Expect, GivesFirstAndLastElement) {
    EXPECT_EQ(firstOf("events", three), 7);
    EXPECT_EQ(lastOf("events", three), 9);
    EXPECT_EQ(firstOf("events", std::vector{5}), 5);
    EXPECT_EQ(lastOf("events", std::vector{5}), 5);
}

TEST(Expect, FailsWithoutFirstOrLastElement) {
    const std::string message = "the number of events: at least 1, not 0";
    EXPECT_EQ(failureOf([] { firstOf("events", none); }), message);
    EXPECT_EQ(failureOf([] { lastOf("events", none); }), message);
}

TEST(Expect, GivesElementsThatThereAre) {
    EXPECT_EQ(elementOf("events", three, 0), 7);
    EXPECT_EQ(elementOf("events", three, 2), 9);
}

TEST(Expect, FailsBehindTheLastElement) {
    EXPECT_EQ(failureOf([] { elementOf("calls", three, 3); }),
              "the number of calls: at least 4, not 3");
}

}  // namespace
}  // namespace validator
