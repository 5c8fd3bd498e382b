#include <array>
#include <limits>
#include <string>

#include "fake_host/text.h"
#include "validator/component/groups.h"

namespace validator {
namespace {

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

/// The line of the result file that holds the value of `key`, without its indentation.
std::string lineOfFile(Stage& stage, const std::string& key) {
    const std::string text = stage.resultText();
    const std::size_t at = text.find("\"" + key + "\"");
    if (at == text.npos) fail("the result file", "a member " + key, "none");
    return text.substr(at, text.find('\n', at) - at);
}

/// Runs two tasks on one video that has a result file, from the beginning.
std::string lineAfterRun(Stage& stage, const std::string& key) {
    std::filesystem::remove(stage.resultFile());
    stage.runToEnd();
    return lineOfFile(stage, key);
}

void prepareCachedRun(Stage& stage) {
    stage.insert(video("clip.mp4", most * second)
                     .scenes({{0, 10 * second}})
                     .keyFrames({second})
                     .cacheIn(stage.directory()));
    stage.useKinds({4, 3});
}

/// Says by the calls to its task whether a material of these ticks is analysed.
bool isAnalysed(Stage& stage, std::int64_t ticks) {
    FakeMedia& media = stage.make(video("clip.mp4", ticks));
    stage.component().clearMaterials();
    stage.component().insertMaterials(materialList({&media}).get(), 0);
    stage.journal();
    stage.runToEnd();
    return !stage.journal("task0.start").empty();
}

void expectLimit(Stage& stage, std::int64_t longestSkipped) {
    const std::string of = "a video of " + shown(longestSkipped);
    expect(!isAnalysed(stage, longestSkipped), of + " ticks", "not analysed", "analysed");
    expect(isAnalysed(stage, longestSkipped + 1), of + " ticks and one more", "analysed",
           "not analysed");
}

/// The scenes that a keyframe task is handed where these were found.
std::string scenesKept(Stage& stage, const std::vector<KOR::TickRange>& found) {
    stage.component().clearMaterials();
    FakeMedia& media = stage.make(video("clip.mp4", 1000 * second).scenes(found));
    stage.component().insertMaterials(materialList({&media}).get(), 0);
    stage.journal();
    stage.runToEnd();
    const Lines handed = stage.journal("task1.setSceneRanges");
    expectEqual("hand-overs of scenes", handed.size(), 1U);
    return handed.front().substr(std::string("task1.setSceneRanges").size());
}

Lines blocksOf(Stage& stage) {
    return stage.journal("task0.setParameterBlock");
}

std::string block(double threshold) {
    return "task0.setParameterBlock(1, 1.0, " + asText(threshold) + ", 0)";
}

void defaultOfMinScene(Stage& stage) {
    stage.useKinds({4, 3});
    expectEqual("the scenes kept",
                scenesKept(stage, {{0, 2 * second - 1}, {5, 5 + 2 * second}, {7, 8}}),
                "([5, 20000005))");
}

void defaultOfThreshold(Stage& stage) {
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4});
    stage.runToEnd();
    expectLines("the block of scenes", blocksOf(stage), {block(3)});
}

void defaultOfMinNeed(Stage& stage) {
    stage.useKinds({4});
    expectLimit(stage, 2 * second);
}

void defaultOfPhoto(Stage& stage) {
    stage.insert(photo("photo.jpg"));
    stage.useKinds({4, 1, 7});
    stage.journal();
    stage.runToEnd();
    expectLines("calls to tasks", stage.journal("task"), {});
}

void minSceneIsKeptAsItIs(Stage& stage) {
    prepareCachedRun(stage);
    for (const std::int32_t value : {0, 1, -1, 3, most, least, -2000000000}) {
        stage.setParam("minScenceDuration", value);
        expectEqual("the result file", lineAfterRun(stage, "minScenceDuration"),
                    "\"minScenceDuration\": " + std::to_string(value) + ",");
    }
}

void minSceneDropsScenes(Stage& stage) {
    stage.useKinds({4, 3});
    stage.setParam("minScenceDuration", 0);
    expectEqual("the scenes kept with 0",
                scenesKept(stage, {{0, 0}, {9, 10 - second}, {9, 9 - second}}),
                "([0, 0) [9, -9999990))");
    stage.setParam("minScenceDuration", -1);
    expectEqual("the scenes kept with -1", scenesKept(stage, {{9, 9 - second}, {0, -2 * second}}),
                "([9, -9999991))");
    stage.setParam("minScenceDuration", 500);
    expectEqual("the scenes kept with 500",
                scenesKept(stage, {{0, 500 * second}, {1, 500 * second}}), "([0, 5000000000))");
}

void thresholdIsKeptAsItIs(Stage& stage) {
    prepareCachedRun(stage);
    stage.journal();
    for (const double value : {0.0, -1.5, 0.1, 1e-300, 12345678.9, 3.0}) {
        stage.setThreshold(value);
        lineAfterRun(stage, "scenceDetectionThreshold");
        expectLines("the block of scenes", blocksOf(stage), {block(value)});
    }
}

void thresholdIsInFile(Stage& stage) {
    prepareCachedRun(stage);
    stage.setThreshold(0.1);
    expectEqual("the result file", lineAfterRun(stage, "scenceDetectionThreshold"),
                "\"scenceDetectionThreshold\": 0.1,");
    stage.setThreshold(-4);
    expectEqual("the result file", lineAfterRun(stage, "scenceDetectionThreshold"),
                "\"scenceDetectionThreshold\": -4.0,");
}

void minNeedLimits(Stage& stage) {
    stage.useKinds({4});
    for (const std::int32_t seconds : {0, 1, 12, 1000, most}) {
        stage.setParam("minNeedAnalysisDuartion", seconds);
        expectLimit(stage, seconds * second);
    }
}

void minNeedMayBeNegative(Stage& stage) {
    stage.useKinds({4});
    for (const std::int32_t seconds : {-1, least}) {
        stage.setParam("minNeedAnalysisDuartion", seconds);
        expect(isAnalysed(stage, 0), "a video of no length with " + shown(seconds), "analysed",
               "not analysed");
    }
}

void photoIsAnalysedUnless0(Stage& stage) {
    stage.insert(photo("photo.jpg"));
    stage.useKinds({4, 1});
    for (const std::int32_t value : {1, 0, -1, 2, 0x100, 0x10000, least, 0}) {
        stage.setParam("photoNeedAnalysis", value);
        stage.journal();
        stage.runToEnd();
        const Lines none;
        expectLines("starts with " + shown(value), stage.journal("task1.start"),
                    value == 0 ? none : Lines{"task1.start"});
    }
}

void parametersAreApart(Stage& stage) {
    prepareCachedRun(stage);
    stage.insert(photo("photo.jpg"));
    stage.insert(video("short.mp4", 3 * second));
    stage.setParam("minScenceDuration", 5);
    stage.setThreshold(1.25);
    stage.setParam("minNeedAnalysisDuartion", 3);
    stage.setParam("photoNeedAnalysis", 0);
    stage.journal();
    expectEqual("the result file", lineAfterRun(stage, "minScenceDuration"),
                "\"minScenceDuration\": 5,");
    expectLines("the blocks of scenes", blocksOf(stage), {block(1.25)});
}

void runsKeepParameters(Stage& stage) {
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4});
    stage.setThreshold(1.25);
    stage.runToEnd();
    stage.component().clearMaterials();
    stage.component().insertMaterials(
        materialList({&stage.make(video("next.mp4", 10 * second))}).get(), 0);
    stage.useKinds({4});
    stage.runToEnd();
    expectLines("the blocks of scenes", blocksOf(stage), {block(1.25), block(1.25)});
}

/// Two equal videos, of which the first one is on.
void beginOfTwo(Stage& stage, std::int64_t ticks) {
    for (int i = 0; i < 2; ++i)
        stage.insert(video("clip.mp4", ticks).scenes({{0, 3 * second}, {0, 2 * second}}));
    stage.useKinds({4, 3});
    stage.component().start();
}

void thresholdCountsAtNextStart(Stage& stage) {
    beginOfTwo(stage, 10 * second);
    stage.setThreshold(1.25);
    expectLines("the block of the first", blocksOf(stage), {block(3)});
    host().finishAllTasks();
    expectLines("the block of the second", blocksOf(stage), {block(1.25)});
}

void minSceneCountsAtNextFinish(Stage& stage) {
    beginOfTwo(stage, 10 * second);
    stage.task(0).finish();
    stage.setParam("minScenceDuration", 3);
    host().finishAllTasks();
    expectLines("the scenes kept", stage.journal("task1.setSceneRanges"),
                {"task1.setSceneRanges([0, 30000000) [0, 20000000))",
                 "task1.setSceneRanges([0, 30000000))"});
}

void minNeedCountsAtNextMaterial(Stage& stage) {
    beginOfTwo(stage, 10 * second);
    stage.setParam("minNeedAnalysisDuartion", 10);
    host().finishAllTasks();
    expectLines("starts of the first task", stage.journal("task0.start"), {"task0.start"});
    expectEqual("starts", host().startCount.load(), 2);
}

void photoCountsAtNextMaterial(Stage& stage) {
    stage.insert(photo("first.jpg"));
    stage.insert(video("clip.mp4", 10 * second));
    stage.insert(photo("photo.jpg"));
    stage.useKinds({4, 1});
    stage.component().start();
    stage.setParam("photoNeedAnalysis", 1);
    host().finishAllTasks();
    expectLines("sources of the second task", stage.journal("task1.setSource"),
                {"task1.setSource(clip.mp4, 0, 0)", "task1.setSource(photo.jpg, 0, 0)"});
}

}  // namespace

const std::vector<ComponentCheck> parametersChecks = {
    {"parameters.min-scene-is-2",
     "Scenes shorter than 2 whole seconds are dropped where minScenceDuration was not set.",
     defaultOfMinScene},
    {"parameters.threshold-is-3",
     "Scenes are asked for with a threshold of 3.0 where scenceDetectionThreshold was not set.",
     defaultOfThreshold},
    {"parameters.min-need-is-2",
     "A video of 2 seconds is not analysed, and one a tick longer is, where "
     "minNeedAnalysisDuartion was not set.",
     defaultOfMinNeed},
    {"parameters.photo-need-is-0", "A photo starts no task where photoNeedAnalysis was not set.",
     defaultOfPhoto},
    {"parameters.min-scene-is-kept-as-it-is",
     "Every minScenceDuration stands in the result file as it was set, negative ones included.",
     minSceneIsKeptAsItIs},
    {"parameters.min-scene-drops-scenes",
     "minScenceDuration is compared with a scene's whole seconds, cut toward zero.",
     minSceneDropsScenes},
    {"parameters.threshold-is-kept-as-it-is",
     "Every scenceDetectionThreshold is handed to the scene task as it was set.",
     thresholdIsKeptAsItIs},
    {"parameters.threshold-is-in-file",
     "scenceDetectionThreshold stands in the result file in its shortest form.", thresholdIsInFile},
    {"parameters.min-need-limits",
     "A video of just minNeedAnalysisDuartion seconds is not analysed, and one a tick longer is.",
     minNeedLimits},
    {"parameters.min-need-may-be-negative",
     "With a negative minNeedAnalysisDuartion even a video of no length is analysed.",
     minNeedMayBeNegative},
    {"parameters.photo-need-is-a-flag", "A photo is analysed with every photoNeedAnalysis but 0.",
     photoIsAnalysedUnless0},
    {"parameters.keep-apart", "Each parameter leaves the others as they are.", parametersAreApart},
    {"parameters.outlive-runs", "Parameters outlive runs, materials and kinds.",
     runsKeepParameters},
    {"parameters.threshold-counts-at-next-start",
     "A threshold set during a run counts from the next start of a scene task on.",
     thresholdCountsAtNextStart},
    {"parameters.min-scene-counts-at-next-finish",
     "A minScenceDuration set during a run counts for the scenes that are taken in next.",
     minSceneCountsAtNextFinish},
    {"parameters.min-need-counts-at-next-material",
     "A minNeedAnalysisDuartion set during a run counts from the next material on.",
     minNeedCountsAtNextMaterial},
    {"parameters.photo-need-counts-at-next-material",
     "A photoNeedAnalysis set during a run counts from the next material on.",
     photoCountsAtNextMaterial},
};

}  // namespace validator
