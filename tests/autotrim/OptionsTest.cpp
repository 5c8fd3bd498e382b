#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "autotrim/Options.h"

namespace autotrim {
namespace {

const Environment atHome{"", "/home/ada"};

std::variant<Options, Answer> parse(std::vector<std::string> arguments,
                                    const Environment& environment = atHome) {
    return parseOptions(arguments, environment);
}

Options accepted(std::vector<std::string> arguments, const Environment& environment = atHome) {
    auto parsed = parse(std::move(arguments), environment);
    if (auto* options = std::get_if<Options>(&parsed)) return *options;
    ADD_FAILURE() << std::get<Answer>(parsed).text;
    return {};
}

Answer answered(std::vector<std::string> arguments) {
    auto parsed = parse(std::move(arguments));
    if (auto* answer = std::get_if<Answer>(&parsed)) return *answer;
    ADD_FAILURE() << "the command line was accepted";
    return {};
}

/// The reason for which a command line is wrong use.
std::string refusal(std::vector<std::string> arguments) {
    const Answer answer = answered(std::move(arguments));
    EXPECT_EQ(answer.exitCode, exitWrongUse);
    const std::string prefix = "autotrim: ";
    const std::string suffix = "\nRun \"autotrim --help\" for how it is used.\n";
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
    EXPECT_FALSE(options.photos);
    EXPECT_FALSE(options.faceModel);
    EXPECT_FALSE(options.json);
    EXPECT_FALSE(options.log);
}

TEST(Options, TakeEveryOptionWithAValue) {
    const Options options =
        accepted({"--kinds", "6,1", "--min-scene", "0", "--min-length=5", "--threshold", "2.25",
                  "--cache", "kept", "--json", "-", "--progress", "machine", "--log", "run.log",
                  "--face-model", "faces.onnx", "a", "b"});
    EXPECT_EQ(options.kinds, (Kinds{6, 1}));
    EXPECT_EQ(options.minSceneSeconds, 0);
    EXPECT_EQ(options.minLengthSeconds, 5);
    EXPECT_EQ(options.threshold, 2.25);
    EXPECT_EQ(options.cacheRoot, "kept");
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
    EXPECT_EQ(refusal({"--version=2"}), "--version: it takes no value");
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
    for (const std::string option : {"--kinds", "--min-scene", "--min-length", "--threshold",
                                     "--face-model", "--cache", "--json", "--progress", "--log"}) {
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
    for (const std::string option : {"--kinds", "--min-scene", "--min-length", "--threshold",
                                     "--face-model", "--cache", "--json", "--progress", "--log"}) {
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
          "--face-model", "--cache", "--json", "--progress", "--log", "--version", "130"}) {
        EXPECT_NE(answer.text.find(name), std::string::npos) << name;
    }
}

}  // namespace
}  // namespace autotrim
