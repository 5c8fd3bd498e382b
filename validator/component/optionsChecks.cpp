#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>

#include "fake_host/text.h"
#include "validator/component/groups.h"

namespace validator {
namespace {

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

constexpr std::array<const char*, 4> keys = {"minScenceDuration", "scenceDetectionThreshold",
                                             "minNeedAnalysisDuartion", "photoNeedAnalysis"};

KOR::Status set(Stage& stage, const std::string& key) {
    KOR::KorValue value{};
    value.asInt32 = 77;
    return stage.component().setAnalysisParam(key.c_str(), &value);
}

void expectUnknown(Stage& stage, const std::string& key) {
    expectEqual("setAnalysisParam(" + shown(key) + ")", set(stage, key), KOR::statusFailed);
}

/// A run over a photo, a short video and a longer one with one scene of just below two seconds and
/// one of two.
void prepareRun(Stage& stage) {
    stage.insert(photo("photo.jpg"));
    stage.insert(video("short.mp4", 2 * second));
    stage.insert(video("clip.mp4", 2 * second + 1)
                     .scenes({{0, 2 * second - 1}, {0, 2 * second}})
                     .keyFrames({second})
                     .cacheIn(stage.directory()));
    stage.useKinds({4, 3, 1});
}

Lines journalOfRun(Stage& stage) {
    stage.journal();
    stage.runToEnd();
    std::filesystem::remove(stage.resultFile());
    return stage.journal();
}

void optionsAreAccepted(Stage& stage) {
    std::mt19937_64 random(stage.occasion().seed);
    for (const std::int32_t key : {0, 1, -1, least, most, 0, static_cast<std::int32_t>(random())}) {
        for (const std::int32_t value : {0, least, static_cast<std::int32_t>(random())}) {
            expectEqual("setIntOption()", stage.component().setIntOption(key, value),
                        KOR::statusOk);
        }
    }
}

void optionsChangeNothing(Stage& stage) {
    prepareRun(stage);
    const Lines without = journalOfRun(stage);
    for (std::int32_t key = -2; key < 20; ++key)
        stage.component().setIntOption(key, 7);
    expectLines("the run with options", journalOfRun(stage), without);
    expectEqual("getPriority()", stage.component().getPriority(), 100);
}

void nullKeyFails(Stage& stage) {
    const KOR::KorValue value{};
    expectEqual("setAnalysisParam(null, value)",
                stage.component().setAnalysisParam(nullptr, &value), KOR::statusFailed);
}

void nullValueFails(Stage& stage) {
    prepareRun(stage);
    const Lines before = journalOfRun(stage);
    for (const char* const key : keys) {
        expectEqual("setAnalysisParam(" + shown(key) + ", null)",
                    stage.component().setAnalysisParam(key, nullptr), KOR::statusFailed);
    }
    expectLines("the run afterwards", journalOfRun(stage), before);
}

void otherKeysAreUnknown(Stage& stage) {
    for (const char* const key :
         {"", "detectParamMode", "taskPriority", "progressScale", "reservedFactor",
          "minSceneDuration", "sceneDetectionThreshold", "minNeedAnalysisDuration",
          "minNeedAnalysisDuratiom", "photoNeedAnalysys"}) {
        expectUnknown(stage, key);
    }
}

void lettersCount(Stage& stage) {
    for (const std::string key : keys) {
        std::string large = key;
        large.front() = static_cast<char>(large.front() - 'a' + 'A');
        expectUnknown(stage, large);
        std::string small = key;
        std::transform(small.begin(), small.end(), small.begin(),
                       [](char c) { return c < 'a' ? static_cast<char>(c - 'A' + 'a') : c; });
        expectUnknown(stage, small);
    }
}

void wholeKeyCounts(Stage& stage) {
    for (const std::string key : keys) {
        expectUnknown(stage, key.substr(0, key.size() - 1));
        expectUnknown(stage, key + "s");
        expectUnknown(stage, key + " ");
        expectUnknown(stage, " " + key);
        expectUnknown(stage, key.substr(1));
    }
}

void unknownKeyChangesNothing(Stage& stage) {
    prepareRun(stage);
    const Lines before = journalOfRun(stage);
    otherKeysAreUnknown(stage);
    lettersCount(stage);
    wholeKeyCounts(stage);
    expectLines("the run afterwards", journalOfRun(stage), before);
}

void lettersAreCompared(Stage& stage) {
    for (const std::string key : keys) {
        const std::string copy = "x" + key;
        KOR::KorValue value{};
        expectEqual("setAnalysisParam(" + shown(key) + "), the key elsewhere",
                    stage.component().setAnalysisParam(copy.c_str() + 1, &value), KOR::statusOk);
    }
}

void typeIsIgnored(Stage& stage) {
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4});
    for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U, 99U, 0xFFFFFFFFU}) {
        KOR::KorValue value{};
        std::memcpy(&value.type, &type, sizeof type);
        value.reserved = 0xFFFFFFFF;
        value.asReal = 0.5 + type;
        expectEqual("setAnalysisParam()",
                    stage.component().setAnalysisParam("scenceDetectionThreshold", &value),
                    KOR::statusOk);
        stage.runToEnd();
        Lines block = stage.journal("task0.setParameterBlock");
        expectLines("the block of scenes", block,
                    {"task0.setParameterBlock(1, 1.0, " + asText(0.5 + type) + ", 0)"});
    }
}

/// The first 16 bytes of a value, of which the payload is an int32 and what lies behind it.
using ShortRecord = std::array<std::uint32_t, 4>;

KOR::Status set(Stage& stage, const char* key, const ShortRecord& record) {
    // In a block of its own, so that tools that watch memory see what is read behind it.
    const std::unique_ptr<ShortRecord> copy(new ShortRecord(record));
    return stage.component().setAnalysisParam(key,
                                              reinterpret_cast<const KOR::KorValue*>(copy.get()));
}

void lowHalfCounts(Stage& stage) {
    prepareRun(stage);
    const Lines defaults = journalOfRun(stage);
    for (const char* const key : {"minScenceDuration", "minNeedAnalysisDuartion"}) {
        expectEqual("setAnalysisParam()", set(stage, key, {1, 0, 2, 0xDEADBEEF}), KOR::statusOk);
    }
    expectEqual("setAnalysisParam()", set(stage, "photoNeedAnalysis", {1, 0, 0, 0xDEADBEEF}),
                KOR::statusOk);
    expectLines("the run with the defaults set", journalOfRun(stage), defaults);
}

void shortRecordSuffices(Stage& stage) {
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4});
    ShortRecord record{3, 0, 0, 0};
    const double threshold = 4.25;
    std::memcpy(&record[2], &threshold, sizeof threshold);
    expectEqual("setAnalysisParam()", set(stage, "scenceDetectionThreshold", record),
                KOR::statusOk);
    stage.runToEnd();
    expectLines("the block of scenes", stage.journal("task0.setParameterBlock"),
                {"task0.setParameterBlock(1, 1.0, 4.25, 0)"});
}

}  // namespace

const std::vector<ComponentCheck> optionsChecks = {
    {"options.any-option-is-accepted",
     "setIntOption accepts every key and value, also for a second time.", optionsAreAccepted},
    {"options.options-change-nothing", "Integer options change nothing about a run.",
     optionsChangeNothing},
    {"options.null-key-fails", "A null key fails.", nullKeyFails},
    {"options.null-value-fails", "A null value fails and changes no parameter.", nullValueFails},
    {"options.other-keys-fail",
     "Every key but the four fails, also with \"Scence\" or \"Duartion\" put right.",
     otherKeysAreUnknown},
    {"options.keys-heed-case", "A key in other letters, large or small, fails.", lettersCount},
    {"options.whole-key-is-compared", "A key with a letter more or less fails.", wholeKeyCounts},
    {"options.unknown-key-changes-nothing", "A key that fails changes no parameter.",
     unknownKeyChangesNothing},
    {"options.keys-compared-by-letters",
     "Keys are compared letter by letter, wherever their text lies.", lettersAreCompared},
    {"options.type-is-ignored", "What type a value says it has does not matter.", typeIsIgnored},
    {"options.integers-have-32-bits",
     "Of an integer parameter 32 bits are read, whatever the other half of the payload holds.",
     lowHalfCounts},
    {"options.short-record-suffices", "A parameter may be a record of 16 bytes.",
     shortRecordSuffices},
};

}  // namespace validator
