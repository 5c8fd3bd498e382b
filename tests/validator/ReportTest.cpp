#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "validator/Report.h"

namespace validator {
namespace {

Judged judgedAs(Verdict verdict, const std::string& name) {
    return {{name, "It is so."}, std::move(verdict)};
}

const std::vector<Judged> oneOfEach = {
    judgedAs({Outcome::pass, "", "", "", "", {}}, "a.pass"),
    judgedAs({Outcome::warn, "", "", "", "", {"beware", "of it"}}, "a.warn"),
    judgedAs({Outcome::skip, "", "", "", "no video", {}}, "a.skip"),
    judgedAs({Outcome::fail, "count()", "2", "1", "", {}}, "a.fail"),
    judgedAs({Outcome::crash, "", "", "had not ended after 5 ms", "", {}}, "a.crash"),
};

TEST(ReportText, NamesOnlyWhatHasSomethingToSay) {
    const std::string expected = R"(warn   a.warn
       It is so.
       warning:   beware
       warning:   of it
skip   a.skip
       It is so.
       because:   no video
fail   a.fail
       It is so.
       looked at: count()
       expected:  2
       found:     1
crash  a.crash
       It is so.
       the check had not ended after 5 ms
5 checks: 1 pass, 1 warn, 1 skip, 1 fail, 1 crash
)";
    EXPECT_EQ(reportText(oneOfEach, Options{}), expected);
}

TEST(ReportText, NamesEverythingWhenAsked) {
    Options options;
    options.verbose = true;
    EXPECT_EQ(reportText({oneOfEach[0]}, options),
              "pass   a.pass\n       It is so.\n1 checks: 1 pass\n");
}

TEST(ReportJson, HasEveryCheckAndTheCounts) {
    Options options;
    options.side = Side::host;
    options.library = "libhost.so";
    options.seed = 7;
    const std::string expected = R"json({
    "schema": "material-analysis-validator/1",
    "side": "host",
    "library": "libhost.so",
    "seed": 7,
    "counts": {
        "pass": 0,
        "warn": 1,
        "skip": 0,
        "fail": 1,
        "crash": 0
    },
    "checks": [
        {
            "id": "a.warn",
            "claim": "It is so.",
            "outcome": "warn",
            "warnings": [
                "beware",
                "of it"
            ]
        },
        {
            "id": "a.fail",
            "claim": "It is so.",
            "outcome": "fail",
            "what": "count()",
            "expected": "2",
            "found": "1"
        }
    ]
}
)json";
    EXPECT_EQ(reportJson({oneOfEach[1], oneOfEach[3]}, options), expected);
}

TEST(ListText, AlignsTheClaimsAndCounts) {
    EXPECT_EQ(listText({{"a.b", "One."}, {"a.long", "Two."}}),
              "a.b     One.\na.long  Two.\n2 checks\n");
}

TEST(ListJson, HasIdsAndClaims) {
    const std::string expected = R"({
    "schema": "material-analysis-validator/1",
    "checks": [
        {
            "id": "a.b",
            "claim": "One."
        }
    ]
}
)";
    EXPECT_EQ(listJson({{"a.b", "One."}}), expected);
}

TEST(HasFaults, IsTrueForFailuresAndCrashesOnly) {
    EXPECT_FALSE(hasFaults({oneOfEach[0], oneOfEach[1], oneOfEach[2]}));
    EXPECT_TRUE(hasFaults({oneOfEach[0], oneOfEach[3]}));
    EXPECT_TRUE(hasFaults({oneOfEach[4]}));
}

}  // namespace
}  // namespace validator
