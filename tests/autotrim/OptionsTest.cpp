#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "autotrim/Options.h"

namespace autotrim {
namespace {

const Environment atHome{"", "/home/ada"};

using Parsed = std::variant<Options, CacheCommand, Answer>;

/// Returns what a command line was taken for.
template <typename Kind>
Kind parsedAs(const std::vector<std::string>& arguments, const Environment& environment = atHome) {
    const Parsed parsed = parseOptions(arguments, environment);
    if (const auto* kind = std::get_if<Kind>(&parsed)) return *kind;
    const auto* answer = std::get_if<Answer>(&parsed);
    ADD_FAILURE() << "taken for something else: " << (answer == nullptr ? "" : answer->text);
    return {};
}

Options accepted(const std::vector<std::string>& arguments,
                 const Environment& environment = atHome) {
    return parsedAs<Options>(arguments, environment);
}

Answer answered(const std::vector<std::string>& arguments,
                const Environment& environment = atHome) {
    return parsedAs<Answer>(arguments, environment);
}

/// The reason for which a command line is wrong use of `program`.
std::string refusal(const std::vector<std::string>& arguments,
                    const std::string& program = "autotrim",
                    const Environment& environment = atHome) {
    const Answer answer = answered(arguments, environment);
    EXPECT_EQ(answer.exitCode, exitWrongUse);
    const std::string prefix = "autotrim: ";
    const std::string suffix = "\nRun \"" + program + " --help\" for how it is used.\n";
    EXPECT_EQ(answer.text.substr(0, prefix.size()), prefix);
    if (answer.text.size() < prefix.size() + suffix.size()) return answer.text;
    EXPECT_EQ(answer.text.substr(answer.text.size() - suffix.size()), suffix);
    return answer.text.substr(prefix.size(), answer.text.size() - prefix.size() - suffix.size());
}

TEST(Options, HaveTheDocumentedDefaults) {
    const Options options = accepted({"clip.mp4"});
    EXPECT_EQ(options.files, std::vector<std::string>{"clip.mp4"});
    EXPECT_EQ(options.kinds, (Kinds{6, 7}));
    EXPECT_EQ(options.minSceneSeconds, 2);
    EXPECT_EQ(options.minLengthSeconds, 2);
    EXPECT_EQ(options.threshold, 3.0);
    EXPECT_EQ(options.progress, ProgressStyle::automatic);
    EXPECT_FALSE(options.jobs);
    EXPECT_FALSE(options.photos);
    EXPECT_FALSE(options.faceModel);
    EXPECT_FALSE(options.json);
    EXPECT_FALSE(options.log);
}

TEST(Options, TakeEveryOptionWithAValue) {
    const Options options = accepted({"--kinds",
                                      "6,1",
                                      "--min-scene",
                                      "0",
                                      "--min-length=5",
                                      "--threshold",
                                      "2.25",
                                      "--cache",
                                      "kept",
                                      "--jobs",
                                      "3",
                                      "--json",
                                      "-",
                                      "--progress",
                                      "machine",
                                      "--log",
                                      "run.log",
                                      "--face-model",
                                      "faces.onnx",
                                      "a",
                                      "b"});
    EXPECT_EQ(options.kinds, (Kinds{6, 1}));
    EXPECT_EQ(options.minSceneSeconds, 0);
    EXPECT_EQ(options.minLengthSeconds, 5);
    EXPECT_EQ(options.threshold, 2.25);
    EXPECT_EQ(options.cacheRoot, "kept");
    EXPECT_EQ(options.jobs, 3U);
    EXPECT_EQ(options.json, "-");
    EXPECT_EQ(options.progress, ProgressStyle::machine);
    EXPECT_EQ(options.log, "run.log");
    EXPECT_EQ(options.faceModel, "faces.onnx");
    EXPECT_EQ(options.files, (std::vector<std::string>{"a", "b"}));
}

TEST(Options, TakePhotosWithoutAValue) {
    const Options options = accepted({"--photos", "a", "b"});
    EXPECT_TRUE(options.photos);
    EXPECT_EQ(options.files, (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(accepted({"--photos", "--photos", "a"}).photos);
}

TEST(Options, RefuseAValueWhereNoneIsTaken) {
    for (const std::string value : {"", "true", "false", "1", "portrait.jpg"}) {
        EXPECT_EQ(refusal({"--photos=" + value, "a"}), "--photos: it takes no value");
    }
    EXPECT_EQ(refusal({"--no-cache=no", "a"}), "--no-cache: it takes no value");
    EXPECT_EQ(refusal({"--version=2"}), "--version: it takes no value");
}

TEST(Options, TakeNoCacheForNoDirectory) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--no-cache", "a"},
                                                      {"a", "--no-cache"},
                                                      {"--no-cache", "--no-cache", "a"}}) {
        const Options options = accepted(arguments);
        EXPECT_EQ(options.cacheRoot, "");
        EXPECT_EQ(options.files, std::vector<std::string>{"a"});
    }
}

TEST(Options, RefuseACacheThatIsNoCache) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--no-cache", "--cache", "kept", "a"},
          {"--cache=kept", "--no-cache", "a"}}) {
        EXPECT_EQ(refusal(arguments), "--cache excludes --no-cache");
    }
}

TEST(Options, KeepFilesInOrderAndTwice) {
    EXPECT_EQ(accepted({"b", "--min-scene", "1", "a", "b"}).files,
              (std::vector<std::string>{"b", "a", "b"}));
}

TEST(Options, TakeOddFileNamesLiterally) {
    const std::vector<std::string> names = {"[a,b]", "{}", "", "a,b", "\xFF\n", "a b", "-", "%%"};
    EXPECT_EQ(accepted(names).files, names);
    EXPECT_EQ(accepted({"--cache", "[a,b]", "a"}).cacheRoot, "[a,b]");
}

TEST(Options, TakeDashedNamesAfterTwoDashes) {
    EXPECT_EQ(accepted({"--min-scene", "1", "--", "--json", "-x"}).files,
              (std::vector<std::string>{"--json", "-x"}));
}

TEST(Options, RefuseACallWithoutFiles) {
    EXPECT_EQ(refusal({}), "FILE is required");
    EXPECT_EQ(refusal({"--min-scene", "1"}), "FILE is required");
}

TEST(Options, RefuseUnknownOptions) {
    EXPECT_NE(refusal({"--frobnicate", "a"}).find("--frobnicate"), std::string::npos);
}

TEST(Options, RefuseOptionsGivenTwice) {
    for (const std::string option :
         {"--kinds", "--min-scene", "--min-length", "--threshold", "--face-model", "--cache",
          "--jobs", "--json", "--progress", "--log"}) {
        EXPECT_EQ(refusal({option, "1", option + "=2", "a"}), option + ": given more than once");
    }
}

TEST(Options, RefuseKindsWithTheirReason) {
    EXPECT_EQ(refusal({"--kinds", "4", "a"}),
              "--kinds: a single kind gives no records: list at least two");
    EXPECT_EQ(refusal({"--kinds", "4,x", "a"}), "--kinds: \"x\" is not a whole number");
}

TEST(Options, RefuseSecondsThatAreNoWholeNumber) {
    for (const char* text : {"", "x", "1.5", "1s", " 1", "+1", "0x10", "1e3"}) {
        EXPECT_EQ(refusal({"--min-scene", text, "a"}),
                  "--min-scene: \"" + std::string(text) + "\" is not a whole number of seconds");
    }
}

TEST(Options, RefuseSecondsOutOfRange) {
    EXPECT_EQ(accepted({"--min-length", "2147483647", "a"}).minLengthSeconds, 2147483647);
    EXPECT_EQ(refusal({"--min-length", "2147483648", "a"}),
              "--min-length: \"2147483648\" is out of range");
    EXPECT_EQ(refusal({"--min-length", "-1", "a"}), "--min-length: \"-1\" is negative");
}

TEST(Options, RefuseNumbersOfJobsThatAreNone) {
    EXPECT_EQ(accepted({"--jobs", "1", "a"}).jobs, 1U);
    EXPECT_EQ(accepted({"--jobs", "64", "a"}).jobs, maxJobs);
    for (const std::string text : {"0", "-1", "65", "100000"}) {
        EXPECT_EQ(refusal({"--jobs", text, "a"}),
                  "--jobs: \"" + text + "\" is not between 1 and 64");
    }
    for (const std::string text : {"", "abc", "2.0", "+2", " 2", "2x", "0x2"}) {
        EXPECT_EQ(refusal({"--jobs", text, "a"}), "--jobs: \"" + text + "\" is not a whole number");
    }
    EXPECT_EQ(refusal({"--jobs", "99999999999999999999", "a"}),
              "--jobs: \"99999999999999999999\" is out of range");
}

TEST(Options, RefuseThresholdsThatAreNotFinite) {
    EXPECT_EQ(refusal({"--threshold", "nan", "a"}), "--threshold: \"nan\" is not finite");
    EXPECT_EQ(refusal({"--threshold", "inf", "a"}), "--threshold: \"inf\" is not finite");
    EXPECT_EQ(refusal({"--threshold", "1e999", "a"}), "--threshold: \"1e999\" is out of range");
}

TEST(Options, RefuseThresholdsThatAreNoNumber) {
    for (const char* text : {"", "x", "3,5", "3.0x"}) {
        EXPECT_EQ(refusal({"--threshold", text, "a"}),
                  "--threshold: \"" + std::string(text) + "\" is not a number");
    }
}

TEST(Options, RefuseThresholdsNotAboveZero) {
    EXPECT_EQ(refusal({"--threshold", "0", "a"}), "--threshold: \"0\" is not above 0");
    EXPECT_EQ(refusal({"--threshold", "-3", "a"}), "--threshold: \"-3\" is not above 0");
}

TEST(Options, RefuseUnknownProgressStyles) {
    EXPECT_EQ(refusal({"--progress", "fancy", "a"}),
              "--progress: \"fancy\" is none of auto, machine and none");
}

TEST(Options, RefuseEmptyNames) {
    EXPECT_EQ(refusal({"--json", "", "a"}), "--json: the name is empty");
    EXPECT_EQ(refusal({"--cache", "", "a"}), "--cache: the name is empty");
    EXPECT_EQ(refusal({"--log", "", "a"}), "--log: the name is empty");
    EXPECT_EQ(refusal({"--face-model", "", "a"}), "--face-model: the name is empty");
}

TEST(Options, RefuseAnEqualsSignWithoutAValue) {
    for (const std::string option :
         {"--kinds", "--min-scene", "--min-length", "--threshold", "--face-model", "--cache",
          "--jobs", "--json", "--progress", "--log"}) {
        EXPECT_EQ(refusal({option + "=", "a", "b"}), option + ": no value follows the \"=\"");
    }
    EXPECT_EQ(accepted({"--json=a=", "b"}).json, "a=");
    EXPECT_EQ(accepted({"--", "--json=", "b"}).files, (std::vector<std::string>{"--json=", "b"}));
}

TEST(Options, MakeWrongTextHarmless) {
    EXPECT_EQ(refusal({"--min-scene", "\x1B[2J", "a"}),
              "--min-scene: \"\\x1B[2J\" is not a whole number of seconds");
}

TEST(Options, FindTheCacheDirectoryOfTheUser) {
    EXPECT_EQ(accepted({"a"}, {"/var/ada", "/home/ada"}).cacheRoot, "/var/ada/autotrim");
    EXPECT_EQ(accepted({"a"}, {"", "/home/ada"}).cacheRoot, "/home/ada/.cache/autotrim");
    EXPECT_EQ(accepted({"a"}, {"relative", "/home/ada"}).cacheRoot, "/home/ada/.cache/autotrim");
    EXPECT_EQ(accepted({"a"}, {"", "home/ada"}).cacheRoot, "");
    EXPECT_EQ(accepted({"a"}, {"", ""}).cacheRoot, "");
}

TEST(Options, AnswerWithTheVersion) {
    const Answer answer = answered({"--version"});
    EXPECT_EQ(answer.exitCode, exitAllDone);
    EXPECT_EQ(answer.text, "autotrim " AUTOTRIM_VERSION "\n");
}

TEST(Options, AnswerWithHelpThatNamesEveryOption) {
    const Answer answer = answered({"--help"});
    EXPECT_EQ(answer.exitCode, exitAllDone);
    for (const char* name :
         {"FILE", "--kinds", "--min-scene", "--min-length", "--threshold", "--photos",
          "--face-model", "--cache", "--no-cache", "--json", "--progress", "--log", "--version",
          "autotrim cache list", "autotrim cache clear", "130"}) {
        EXPECT_NE(answer.text.find(name), std::string::npos) << name;
    }
}

CacheCommand command(const std::vector<std::string>& arguments,
                     const Environment& environment = atHome) {
    return parsedAs<CacheCommand>(arguments, environment);
}

/// The reason for which a command line that begins with "cache" is wrong use.
std::string refusedCommand(const std::vector<std::string>& arguments,
                           const Environment& environment = atHome) {
    return refusal(arguments, "autotrim cache", environment);
}

TEST(CacheCommand, IsToListOrToClear) {
    EXPECT_EQ(command({"cache", "list"}).action, CacheCommand::Action::list);
    EXPECT_EQ(command({"cache", "clear"}).action, CacheCommand::Action::clear);
    EXPECT_EQ(command({"cache", "--", "clear"}).action, CacheCommand::Action::clear);
}

TEST(CacheCommand, FindsTheSameDirectoryAsARun) {
    EXPECT_EQ(command({"cache", "list"}).cacheRoot, "/home/ada/.cache/autotrim");
    EXPECT_EQ(command({"cache", "list"}, {"/var/ada", ""}).cacheRoot, "/var/ada/autotrim");
    EXPECT_EQ(command({"cache", "list", "--cache", "[a,b]"}).cacheRoot, "[a,b]");
    EXPECT_EQ(command({"cache", "--cache=kept", "clear"}, {"", ""}).cacheRoot, "kept");
}

TEST(CacheCommand, IsRefusedWhereNoDirectoryIsKnown) {
    for (const char* action : {"list", "clear"}) {
        EXPECT_EQ(refusedCommand({"cache", action}, {"", "home/ada"}),
                  "your home directory is not known: name a directory with --cache");
    }
}

TEST(CacheCommand, IsRefusedWithoutAnAction) {
    EXPECT_EQ(refusedCommand({"cache"}), "ACTION is required");
    EXPECT_EQ(refusedCommand({"cache", "--cache", "kept"}), "ACTION is required");
}

TEST(CacheCommand, IsRefusedWithOtherWords) {
    for (const std::string word : {"show", "List", "", "[list]", "clip.mp4"}) {
        EXPECT_EQ(refusedCommand({"cache", word}),
                  "ACTION: \"" + word +
                      "\" is neither list nor clear (a file called \"cache\" is ./cache)");
    }
    for (const std::string rest : {"clear", "clip.mp4", "--photos", "--no-cache"}) {
        EXPECT_EQ(refusedCommand({"cache", "list", rest}),
                  "The following argument was not expected: " + rest);
    }
}

TEST(CacheCommand, IsRefusedWithAWrongDirectory) {
    EXPECT_EQ(refusedCommand({"cache", "list", "--cache", ""}), "--cache: the name is empty");
    EXPECT_EQ(refusedCommand({"cache", "--cache=", "list"}), "--cache: no value follows the \"=\"");
    EXPECT_EQ(refusedCommand({"cache", "list", "--cache", "a", "--cache", "b"}),
              "--cache: given more than once");
}

TEST(CacheCommand, IsAFileWhereItIsNotTheFirstWord) {
    using Files = std::vector<std::string>;
    EXPECT_EQ(accepted({"--", "cache"}).files, Files{"cache"});
    EXPECT_EQ(accepted({"./cache"}).files, Files{"./cache"});
    EXPECT_EQ(accepted({"--photos", "cache"}).files, Files{"cache"});
    EXPECT_EQ(accepted({"a", "cache", "list"}).files, (Files{"a", "cache", "list"}));
}

TEST(CacheCommand, AnswersWithHelpOfItsOwn) {
    const Answer answer = answered({"cache", "--help"});
    EXPECT_EQ(answer.exitCode, exitAllDone);
    for (const char* text : {"autotrim cache ", "list", "clear", "--cache", "./cache"})
        EXPECT_NE(answer.text.find(text), std::string::npos) << text;
}

}  // namespace
}  // namespace autotrim
