#include <random>

#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

/// The score of the one keyframe of a scene that begins at `begin` in a video of this duration.
double scoreIn(Stage& stage, FakeMedia& material, KOR::TickRange scene, std::int64_t duration) {
    material.spec.durationTicks = duration;
    material.spec.sceneResults = {scene};
    material.spec.keyFrameResults = {scene.begin};
    stage.runToEnd();
    return only(stage.results()).score;
}

FakeMedia& insertForScores(Stage& stage) {
    countInTicks(stage);
    FakeMedia& material = stage.insert(video("clip.mp4", 1000));
    stage.useKinds({4, 3});
    return material;
}

void computesInOrder(Stage& stage) {
    FakeMedia& material = insertForScores(stage);
    std::mt19937_64 random(stage.occasion().seed);
    for (int i = 0; i < 200; ++i) {
        const auto duration = static_cast<std::int64_t>(random() >> 24U) + 1;
        const auto begin = static_cast<std::int64_t>(random() % 1000);
        const auto end = begin + 1 + static_cast<std::int64_t>(random() >> 24U);
        expectEqual("the score of [" + shown(begin) + ", " + shown(end) + ") of " + shown(duration),
                    scoreIn(stage, material, {begin, end}, duration),
                    durationScoreOf(begin, end, duration));
    }
}

void countsForEveryKeyFrame(Stage& stage) {
    countInTicks(stage);
    const Records records = recordsOf(stage,
                                      video("clip.mp4", 1000)
                                          .scenes({{0, 100}})
                                          .keyFrames({10, 20, 30})
                                          .entropies({{10, 1.0}, {20, 2.0}, {30, 8.0}}),
                                      {6, 5});
    expectEqual("the best keyframe", only(records).posOfMaxScore, 30);
    expectEqual("its score", only(records).score,
                durationScoreOf(0, 100, 1000) + entropyScoreOf(8.0));
}

}  // namespace

const std::vector<ComponentCheck> durationChecks = {
    {"duration.counts-the-end",
     "The duration score is the scene's length with both ends times 0.3, divided by the duration.",
     [](Stage& stage) {
         FakeMedia& material = insertForScores(stage);
         expectEqual("the score of [100, 200) of 1000", scoreIn(stage, material, {100, 200}, 1000),
                     (101.0 * 0.3) / 1000.0);
     }},
    {"duration.multiplies-before-it-divides",
     "The duration score is the double that multiplying by 0.3 first and dividing then gives.",
     computesInOrder},
    {"duration.of-whole-video-is-above-0.3",
     "A scene as long as the video scores a little more than 0.3.",
     [](Stage& stage) {
         FakeMedia& material = insertForScores(stage);
         expectEqual("the score", scoreIn(stage, material, {0, 10}, 10), (11.0 * 0.3) / 10.0);
     }},
    {"duration.has-no-limit", "A scene longer than its video scores as its length says.",
     [](Stage& stage) {
         FakeMedia& material = insertForScores(stage);
         expectEqual("the score", scoreIn(stage, material, {0, 1000000}, 10),
                     (1000001.0 * 0.3) / 10.0);
     }},
    {"duration.is-the-same-for-all-of-a-scene",
     "Every keyframe of a scene gets its duration score, not the first one alone.",
     countsForEveryKeyFrame},
    {"duration.log-has-scene-and-score",
     "The scores are logged between \"duration score result: {\" and \"}\", one line for each "
     "scene "
     "with its index and six digits.",
     [](Stage& stage) {
         countInTicks(stage);
         recordsOf(stage,
                   video("clip.mp4", 1000).scenes({{0, 100}, {100, 233}}).keyFrames({50, 100, 150}),
                   {4, 3});
         expectLines("the log", loggedBy(stage, "keyFrameDetectFinishedInternal"),
                     {"duration score result: {", "[0:0.030300]", "[1:0.040200]", "}\\n"});
     }},
    {"duration.log-passes-over-empty-scenes",
     "A scene without keyframes has no line in the log, and the others keep their index.",
     [](Stage& stage) {
         countInTicks(stage);
         recordsOf(stage,
                   video("clip.mp4", 1000)
                       .scenes({{0, 100}, {100, 200}, {200, 250}})
                       .keyFrames({120, 240}),
                   {4, 3});
         expectLines("the log", loggedBy(stage, "keyFrameDetectFinishedInternal"),
                     {"duration score result: {", "[1:0.030300]", "[2:0.015300]", "}\\n"});
     }},
    {"duration.log-is-in-fixed-notation",
     "The logged score is in fixed notation whatever its size.",
     [](Stage& stage) {
         countInTicks(stage);
         recordsOf(stage,
                   video("clip.mp4", 10).scenes({{0, 9}, {9, 999999999999999}}).keyFrames({5, 9}),
                   {4, 3});
         expectLines(
             "the log", loggedBy(stage, "keyFrameDetectFinishedInternal"),
             {"duration score result: {", "[0:0.300000]", "[1:29999999999999.730469]", "}\\n"});
     }},
    {"duration.log-without-keyframes-is-empty",
     "Without any keyframe the log has the opening and the closing line alone.",
     [](Stage& stage) {
         recordsOf(stage, video("clip.mp4", 100 * second), {4, 3});
         expectLines("the log", loggedBy(stage, "keyFrameDetectFinishedInternal"),
                     {"duration score result: {", "}\\n"});
     }},
};

}  // namespace validator
