#include <algorithm>

#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

/// Two scenes with a gap between them, in a video of 1000 ticks.
MediaSpec twoScenes() {
    return video("clip.mp4", 1000).scenes({{100, 200}, {300, 400}});
}

/// The positions that the face task of a run with the kinds 4, 3 and 1 is handed: all keyframes
/// that were given to a scene, scene by scene.
void expectPositions(Stage& stage, const MediaSpec& spec, const std::string& positions) {
    countInTicks(stage);
    recordsOf(stage, spec, {4, 3, 1});
    expectLines("the positions handed over", stage.journal("task2.setKeyFramePositions"),
                {"task2.setKeyFramePositions(" + positions + ")"});
}

std::size_t queriesFor(const Lines& lines, const std::string& kind) {
    const std::string call = ".getResultList(" + kind + ", 0, list, 0)";
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(), [&](const std::string& line) { return line.ends_with(call); }));
}

void survivesMissingList(Stage& stage) {
    countInTicks(stage);
    stage.insert(twoScenes().keyFrames({150, 350}));
    stage.useKinds({4, 3, 1});
    stage.component().start();
    stage.task(0).finish();
    host().faults.failMaking(Product::owningList, 1);
    stage.task(1).finish();
    expectLines("the positions handed over", stage.journal("task2.setKeyFramePositions"),
                {"task2.setKeyFramePositions(350)"});
}

void keepsKeyFramesWithoutTask(Stage& stage) {
    countInTicks(stage);
    stage.insert(twoScenes().keyFrames({150}));
    stage.insert(twoScenes().keyFrames({350}));
    stage.useKinds({4, 3, 1});
    stage.component().start();
    for (const std::size_t task : {0U, 1U, 2U, 0U})
        stage.task(task).finish();
    stage.journal();
    stage.task(1).hideAnalysisInterface();
    stage.task(1).finish();
    const Lines lines = stage.journal();
    expectEqual("the first line", firstOf("lines", lines),
                "log keyFrameDetectFinished: \"----Finish Keyframe Extract---素材idx: 1\\n\"");
    expectEqual("the positions handed over", elementOf("lines", lines, 4),
                "task2.setKeyFramePositions(150)");
}

void asksNothingWithoutScenes(Stage& stage) {
    stage.insert(video("clip.mp4", 100 * second).keyFrames({150}));
    stage.useKinds({3, 4});
    stage.component().start();
    stage.journal();
    stage.task(0).finish();
    expectLines("what happens first", firstLines(stage.journal(), 3),
                {"log keyFrameDetectFinishedInternal: \"duration score result: {\"",
                 "log keyFrameDetectFinishedInternal: \"}\\n\"",
                 "log keyFrameDetectFinished: \"----Finish Keyframe Extract---素材idx: 0\\n\""});
}

void takesBothFromOneTask(Stage& stage) {
    countInTicks(stage);
    recordsOf(stage, twoScenes().keyFrames({150, 350}), {6, 1});
    const Lines lines = stage.journal();
    const auto first = [&](const std::string& line) {
        return std::find(lines.begin(), lines.end(), line) - lines.begin();
    };
    const auto scenes = first("task0.getResultList(1, 0, list, 0)");
    const auto keyFrames = first("task0.getResultList(9, 0, list, 0)");
    const auto positions = first("task1.setKeyFramePositions(150, 350)");
    expect(scenes < keyFrames && keyFrames < positions && positions < std::ssize(lines),
           "the questions to the task", "scenes, then keyframes, then both keyframes handed over",
           "another order, or one missing");
}

}  // namespace

const std::vector<ComponentCheck> keyframesChecks = {
    {"keyframes.at-begin-is-in", "A keyframe at a scene's very begin belongs to it.",
     [](Stage& stage) { expectPositions(stage, twoScenes().keyFrames({100}), "100"); }},
    {"keyframes.at-end-is-out", "A keyframe at a scene's very end does not belong to it.",
     [](Stage& stage) {
         expectPositions(stage, twoScenes().keyFrames({199, 200}), "199");
     }},
    {"keyframes.at-end-goes-to-next",
     "A keyframe at a scene's end belongs to the next scene where that one begins there.",
     [](Stage& stage) {
         countInTicks(stage);
         const Records records = recordsOf(
             stage, video("clip.mp4", 1000).scenes({{0, 100}, {100, 300}}).keyFrames({100}),
             {4, 3});
         expectEqual("the scene's begin", only(records).begin, 100);
     }},
    {"keyframes.in-a-gap-are-dropped", "A keyframe between two scenes belongs to none.",
     [](Stage& stage) {
         expectPositions(stage, twoScenes().keyFrames({150, 250, 350}), "150, 350");
     }},
    {"keyframes.before-first-scene-are-dropped",
     "A keyframe before the first scene belongs to none and holds up none behind it.",
     [](Stage& stage) {
         expectPositions(stage, twoScenes().keyFrames({5, 99, 150}), "150");
     }},
    {"keyframes.behind-last-scene-are-dropped", "A keyframe behind the last scene belongs to none.",
     [](Stage& stage) {
         expectPositions(stage, twoScenes().keyFrames({350, 400, 900}), "350");
     }},
    {"keyframes.belong-to-one-scene-only",
     "All scenes share one walk over the keyframes: where scenes overlap, a keyframe goes to the "
     "first of them alone.",
     [](Stage& stage) {
         expectPositions(
             stage,
             video("clip.mp4", 1000).scenes({{0, 200}, {100, 400}}).keyFrames({50, 150, 250}),
             "50, 150, 250");
     }},
    {"keyframes.are-not-sorted",
     "A keyframe that stands behind a later one is dropped once the walk has passed its scene.",
     [](Stage& stage) {
         expectPositions(stage, twoScenes().keyFrames({350, 150, 360}), "350, 360");
     }},
    {"keyframes.of-a-scene-keep-their-order",
     "Keyframes of one scene stay in the task's order, equal positions included.",
     [](Stage& stage) {
         expectPositions(stage, twoScenes().keyFrames({180, 120, 120}), "180, 120, 120");
     }},
    {"keyframes.in-empty-scene-are-none", "A scene of no length holds no keyframe.",
     [](Stage& stage) {
         expectPositions(stage,
                         video("clip.mp4", 1000).scenes({{100, 100}, {100, 200}}).keyFrames({100}),
                         "100");
         expectEqual("the scene's begin", only(stage.results()).begin, 100);
         expectEqual("the scene's end", only(stage.results()).end, 200);
     }},
    {"keyframes.none-are-handed-as-empty-list",
     "Without any keyframe the next task is handed an empty list, and starts.",
     [](Stage& stage) {
         expectPositions(stage, twoScenes(), "");
         expectEqual("starts of tasks", host().startCount.load(), 3);
     }},
    {"keyframes.are-asked-for-once-per-scene-at-most",
     "The task is asked for its keyframes, and not more often than there are scenes.",
     [](Stage& stage) {
         countInTicks(stage);
         recordsOf(stage, twoScenes().keyFrames({150, 350}), {4, 3});
         const std::size_t queries = queriesFor(stage.journal(), "9");
         expect(queries == 1 || queries == 2, "queries for keyframes", "1 or 2", shown(queries));
     }},
    {"keyframes.missing-list-costs-one-scene",
     "Where no list can be made for one scene, that scene has no keyframe and the next its own.",
     survivesMissingList},
    {"keyframes.need-scenes",
     "Without any scene a finished keyframe task is not asked for its keyframes.",
     asksNothingWithoutScenes},
    {"keyframes.stay-where-task-is-missing",
     "A keyframe task that gives no analysis interface leaves the keyframes as they were.",
     keepsKeyFramesWithoutTask},
    {"keyframes.come-with-scenes-in-kind-6",
     "A task of kind 6 is asked for its scenes first and then for its keyframes.",
     takesBothFromOneTask},
};

}  // namespace validator
