#include <chrono>
#include <string>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "validator/Options.h"

namespace validator {
namespace {

Options optionsOf(const std::vector<std::string>& arguments) {
    const auto parsed = parseOptions(arguments);
    const auto* const answer = std::get_if<Answer>(&parsed);
    if (answer != nullptr) ADD_FAILURE() << answer->text;
    return answer == nullptr ? std::get<Options>(parsed) : Options{};
}

int exitCodeOf(const std::vector<std::string>& arguments) {
    const auto parsed = parseOptions(arguments);
    const auto* const answer = std::get_if<Answer>(&parsed);
    return answer == nullptr ? -1 : answer->exitCode;
}

std::string answerTo(const std::vector<std::string>& arguments) {
    const auto parsed = parseOptions(arguments);
    const auto* const answer = std::get_if<Answer>(&parsed);
    return answer == nullptr ? "" : answer->text;
}

// A file that surely exists.
const std::string library = ODD_CHECKS;

TEST(Options, HaveDefaults) {
    const Options options = optionsOf({"component", library});
    EXPECT_EQ(options.side, Side::component);
    EXPECT_EQ(options.library, library);
    EXPECT_TRUE(options.only.empty());
    EXPECT_FALSE(options.lists || options.json || options.verbose);
    EXPECT_EQ(options.seed, 1U);
    EXPECT_EQ(options.timeLimit, std::chrono::seconds(10));
    EXPECT_GE(options.jobs, 1U);
}

TEST(Options, TakeEverything) {
    const Options options =
        optionsOf({"host", library, "--only", "lists", "--only", "runs.order", "--json",
                   "--verbose", "--seed", "18446744073709551615", "--timeout", "0.5", "--jobs", "3",
                   "--video", library, "--photo", library});
    EXPECT_EQ(options.side, Side::host);
    EXPECT_EQ(options.only, (std::vector<std::string>{"lists", "runs.order"}));
    EXPECT_TRUE(options.json && options.verbose);
    EXPECT_EQ(options.seed, 18446744073709551615U);
    EXPECT_EQ(options.timeLimit, std::chrono::milliseconds(500));
    EXPECT_EQ(options.jobs, 3U);
    EXPECT_EQ(options.video, library);
    EXPECT_EQ(options.photo, library);
}

TEST(Options, NeedNoLibraryForTheList) {
    EXPECT_TRUE(optionsOf({"host", "--list"}).lists);
}

TEST(Options, TakeTheLibraryBehindOnly) {
    const Options options = optionsOf({"component", "--only", "identity", library});
    EXPECT_EQ(options.library, library);
    EXPECT_EQ(options.only, std::vector<std::string>{"identity"});
}

TEST(Options, RefuseWrongUse) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"component"},
        {"nothing", library},
        {"component", "/nowhere/library"},
        {"component", library, "another"},
        {"component", library, "--video", library},
        {"component", library, "--seed", "-1"},
        {"component", library, "--timeout", "0"},
        {"component", library, "--jobs", "0"},
        {"component", library, "--only"},
    };
    for (const auto& arguments : wrong)
        EXPECT_EQ(exitCodeOf(arguments), 2) << ::testing::PrintToString(arguments);
}

TEST(Options, NameTheRangeOfNumbers) {
    const std::string usage = "\nRun with --help for more information.\n";
    const std::string ofSeed =
        "--seed: has to be a whole number from 0 to 18446744073709551615, not ";
    const std::string ofJobs = "--jobs: has to be a whole number from 1 to 64, not ";
    const std::string ofTimeout = "--timeout: has to be a number from 0.01 to 3600, not ";
    const auto answer = [](const std::string& option, const std::string& value) {
        return answerTo({"component", library, option + "=" + value});
    };
    for (const std::string value :
         {"-1", "18446744073709551616", "1.5", "1e3", "0x10", "abc", "1 "})
        EXPECT_EQ(answer("--seed", value), ofSeed + '"' + value + '"' + usage);
    for (const std::string value : {"-1", "0", "65", "2.5", "many"})
        EXPECT_EQ(answer("--jobs", value), ofJobs + '"' + value + '"' + usage);
    for (const std::string value : {"-1", "0", "0.009", "3600.1", "nan", "inf", "1e400", "10s"})
        EXPECT_EQ(answer("--timeout", value), ofTimeout + '"' + value + '"' + usage);
}

TEST(Options, TakeNumbersAsTheyAreWritten) {
    EXPECT_EQ(optionsOf({"component", library, "--seed", "010"}).seed, 10U);
    EXPECT_EQ(optionsOf({"component", library, "--seed", "0"}).seed, 0U);
    EXPECT_EQ(optionsOf({"component", library, "--jobs", "064"}).jobs, 64U);
    EXPECT_EQ(optionsOf({"component", library, "--timeout", "3600"}).timeLimit,
              std::chrono::hours(1));
    EXPECT_EQ(optionsOf({"component", library, "--timeout", "1e-2"}).timeLimit,
              std::chrono::milliseconds(10));
}

TEST(Options, AnswerHelpAndVersion) {
    EXPECT_EQ(exitCodeOf({"--help"}), 0);
    EXPECT_EQ(exitCodeOf({"host", "--help"}), 0);
    EXPECT_EQ(exitCodeOf({"--version"}), 0);
}

}  // namespace
}  // namespace validator
