#include <chrono>
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "validator/Checker.h"
#include "validator/Judgement.h"

namespace validator {
namespace {

Options someOptions() {
    Options options;
    options.library = "candidate";
    options.timeLimit = std::chrono::milliseconds(10000);
    options.jobs = 2;
    return options;
}

Verdict verdictOn(const std::string& id, const Options& options = someOptions()) {
    return Checker(ODD_CHECKS).verdictOn(id, options);
}

TEST(Checker, ListsAllChecksInOrder) {
    const auto checks = Checker(ODD_CHECKS).list();
    ASSERT_EQ(checks.size(), 20U);
    EXPECT_EQ(checks[0].id, "odd.passes");
    EXPECT_EQ(checks[0].claim, "Nothing is wrong.");
    EXPECT_EQ(checks[1].id, "odd.fails");
}

TEST(Checker, SaysWhichProgramCannotBeRun) {
    try {
        Checker("/nowhere/checks").list();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("/nowhere/checks"), std::string::npos);
    }
}

TEST(Checker, PassesWhatPasses) {
    EXPECT_EQ(verdictOn("odd.passes").outcome, Outcome::pass);
}

TEST(Checker, TellsOfAFailureWhatWasExpectedAndFound) {
    const Verdict verdict = verdictOn("odd.fails");
    EXPECT_EQ(verdict.outcome, Outcome::fail);
    EXPECT_EQ(verdict.what, "one");
    EXPECT_EQ(verdict.expected, "2");
    EXPECT_EQ(verdict.found, "1");
}

TEST(Checker, KeepsWarningsInOrder) {
    const Verdict verdict = verdictOn("odd.warns");
    EXPECT_EQ(verdict.outcome, Outcome::warn);
    EXPECT_EQ(verdict.warnings, (std::vector<std::string>{"first", "second"}));
}

TEST(Checker, KeepsTheWarningsOfAFailure) {
    const Verdict verdict = verdictOn("odd.warns-and-fails");
    EXPECT_EQ(verdict.outcome, Outcome::fail);
    EXPECT_EQ(verdict.warnings, std::vector<std::string>{"beware"});
}

TEST(Checker, TellsWhyACheckWasSkipped) {
    const Verdict verdict = verdictOn("odd.skips");
    EXPECT_EQ(verdict.outcome, Outcome::skip);
    EXPECT_EQ(verdict.reason, "there is nothing");
}

TEST(Checker, TakesAnExceptionAsAFailure) {
    const Verdict verdict = verdictOn("odd.throws");
    EXPECT_EQ(verdict.outcome, Outcome::fail);
    EXPECT_EQ(verdict.found, "\"thrown\"");
}

TEST(Checker, TakesAnythingElseThrownAsAFailure) {
    EXPECT_EQ(verdictOn("odd.throws-what-is-no-exception").outcome, Outcome::fail);
}

TEST(Checker, SurvivesACrashAndQuotesItsLastWords) {
    const Verdict verdict = verdictOn("odd.crashes");
    EXPECT_EQ(verdict.outcome, Outcome::crash);
    EXPECT_NE(verdict.found.find("\"last words\""), std::string::npos) << verdict.found;
}

TEST(Checker, SaysWhatWasLastFoundAsExpectedBeforeACrash) {
    const std::string found = verdictOn("odd.crashes-after-all-was-well").found;
    EXPECT_TRUE(found.ends_with("; last found as expected: the last thing")) << found;
}

TEST(Checker, SaysNothingOfTheKindWhereNothingWasExpected) {
    EXPECT_EQ(verdictOn("odd.crashes").found.find("as expected"), std::string::npos);
}

TEST(Checker, TrustsNoProcessThatEndsWithoutAVerdict) {
    EXPECT_EQ(verdictOn("odd.ends-early").outcome, Outcome::crash);
}

TEST(Checker, TrustsNoPassOfAProcessThatCrashesAfterwards) {
    EXPECT_EQ(verdictOn("odd.crashes-afterwards").outcome, Outcome::crash);
}

TEST(Checker, KeepsAFailureWhateverFollows) {
    EXPECT_EQ(verdictOn("odd.fails-and-crashes").outcome, Outcome::fail);
}

TEST(Checker, KeepsTheBeginningOfALongFailure) {
    const Verdict verdict = verdictOn("odd.finds-much");
    EXPECT_EQ(verdict.outcome, Outcome::fail);
    EXPECT_EQ(verdict.expected, "little");
    // Of the 10000 bytes that are kept, the last two would be a part of a character.
    std::string found = "xx";
    for (int i = 0; i < 3332; ++i)
        found += "素";
    EXPECT_EQ(verdict.found, found + "... (of 8000000 bytes)");
}

TEST(Checker, KeepsAFailureThatTheSubjectDoesNotSurvive) {
    const Verdict verdict = verdictOn("odd.fails-before-its-subject-crashes");
    EXPECT_EQ(verdict.outcome, Outcome::fail);
    EXPECT_EQ(verdict.found, "not well");
    EXPECT_EQ(verdictOn("odd.passes-before-its-subject-crashes").outcome, Outcome::crash);
}

TEST(Checker, EndsACheckThatHangs) {
    Options options = someOptions();
    options.timeLimit = std::chrono::milliseconds(200);
    const Verdict verdict = verdictOn("odd.hangs", options);
    EXPECT_EQ(verdict.outcome, Outcome::crash);
    EXPECT_EQ(verdict.found, "had not ended after 200 ms");
}

TEST(Checker, TellsOfACheckThatCannotBeTriedAsACrash) {
    const Verdict verdict = Checker("/nowhere/checks").verdictOn("odd.passes", someOptions());
    EXPECT_EQ(verdict.outcome, Outcome::crash);
    const std::string reason = "could not be tried: cannot run /nowhere/checks: ";
    EXPECT_EQ(verdict.found.substr(0, reason.size()), reason);
}

TEST(Checker, LeavesNoFilesBehind) {
    const auto directory = std::filesystem::temp_directory_path();
    const auto filesThere = [&] {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with("left")) ++count;
        }
        return count;
    };
    const std::size_t before = filesThere();
    EXPECT_EQ(verdictOn("odd.leaves-files").outcome, Outcome::pass);
    EXPECT_EQ(filesThere(), before);
}

TEST(Checker, HandsTheOccasionOn) {
    Options options = someOptions();
    options.seed = 18446744073709551615U;
    options.video = "a video.y4m";
    options.photo = "a \"photo\\.pgm";
    const Verdict verdict = verdictOn("odd.tells-its-occasion", options);
    EXPECT_EQ(verdict.what, "18446744073709551615");
    EXPECT_EQ(verdict.expected, "candidate");
    EXPECT_EQ(verdict.found, "a video.y4m and a \"photo\\.pgm");
}

std::vector<std::string> idsOf(const std::vector<ListedCheck>& checks) {
    std::vector<std::string> ids;
    for (const ListedCheck& check : checks)
        ids.push_back(check.id);
    return ids;
}

const std::vector<ListedCheck> someChecks = {{"a.one", ""}, {"a.two", ""}, {"ab.one", ""}};

TEST(Chosen, IsEverythingWithoutANames) {
    EXPECT_EQ(idsOf(chosen(someChecks, {})), idsOf(someChecks));
}

TEST(Chosen, TakesIdsAndGroupsInTheOrderOfTheList) {
    EXPECT_EQ(idsOf(chosen(someChecks, {"ab.one", "a.two"})),
              (std::vector<std::string>{"a.two", "ab.one"}));
    EXPECT_EQ(idsOf(chosen(someChecks, {"a"})), (std::vector<std::string>{"a.one", "a.two"}));
}

TEST(Chosen, RefusesANameOfNothing) {
    EXPECT_THROW(chosen(someChecks, {"a", "a.on"}), std::runtime_error);
}

TEST(Judge, KeepsTheOrderWithManyJobs) {
    Options options = someOptions();
    options.jobs = 4;
    const Checker checker(ODD_CHECKS);
    const auto checks =
        chosen(checker.list(), {"odd.fails", "odd.passes", "odd.skips", "odd.warns", "odd.throws"});
    const auto judged = judge(checker, checks, options);
    ASSERT_EQ(judged.size(), 5U);
    std::vector<Outcome> outcomes;
    for (const Judged& each : judged)
        outcomes.push_back(each.verdict.outcome);
    EXPECT_EQ(outcomes, (std::vector<Outcome>{Outcome::pass, Outcome::fail, Outcome::warn,
                                              Outcome::skip, Outcome::fail}));
}

TEST(Judge, TakesNothingAsNothing) {
    EXPECT_TRUE(judge(Checker(ODD_CHECKS), {}, someOptions()).empty());
}

}  // namespace
}  // namespace validator
