#include <string>

#include <gtest/gtest.h>

#include "validator/check/Verdict.h"

namespace validator {
namespace {

TEST(Verdict, ComesBackFromItsText) {
    const Verdict verdict{Outcome::fail, "what", "\"quoted\"\n", "found", "reason", {"one", "two"}};
    const auto back = verdictFrom(toJson(verdict));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->outcome, Outcome::fail);
    EXPECT_EQ(back->what, "what");
    EXPECT_EQ(back->expected, "\"quoted\"\n");
    EXPECT_EQ(back->found, "found");
    EXPECT_EQ(back->reason, "reason");
    EXPECT_EQ(back->warnings, (std::vector<std::string>{"one", "two"}));
}

TEST(Verdict, IsNotTakenFromAnyOtherText) {
    const std::string whole = toJson(Verdict{});
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(verdictFrom(whole.substr(0, length))) << length;
    for (const char* const text :
         {"null", "[]", "{}", R"({"outcome":"passed","warnings":[]})", R"({"outcome":"pass"})",
          R"({"outcome":1,"warnings":[]})", R"({"outcome":"pass","warnings":[1]})"}) {
        EXPECT_FALSE(verdictFrom(text)) << text;
    }
}

TEST(Verdict, IsAFaultWhenFailedOrCrashed) {
    for (const Outcome outcome : {Outcome::pass, Outcome::warn, Outcome::skip}) {
        EXPECT_FALSE(isFault(Verdict{outcome, "", "", "", "", {}})) << nameOf(outcome);
    }
    EXPECT_TRUE(isFault(Verdict{Outcome::fail, "", "", "", "", {}}));
    EXPECT_TRUE(isFault(Verdict{Outcome::crash, "", "", "", "", {}}));
}

}  // namespace
}  // namespace validator
