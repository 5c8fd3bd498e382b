#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

struct Segment {
    std::int64_t begin;
    std::int64_t end;
    std::int64_t best;
};

void expectSegments(const Records& records, const std::vector<Segment>& segments) {
    const auto text = [](const auto& begin, const auto& end, const auto& best) {
        return shown(begin) + " to " + shown(end) + ", best at " + shown(best);
    };
    Lines found;
    for (const auto& record : records)
        found.push_back(text(record.begin, record.end, record.posOfMaxScore));
    Lines expected;
    for (const Segment& segment : segments)
        expected.push_back(text(segment.begin, segment.end, segment.best));
    expectLines("the records", found, expected);
}

/// Scenes of which the second and the third begin where the first does not, and take over what the
/// one before them left; each scene's last keyframe has the highest entropy.
MediaSpec scenesAgainstOrder() {
    return video("clip.mp4", 10000)
        .scenes({{800, 1000}, {0, 2000}, {10, 3000}})
        .keyFrames({900, 1000, 100, 2000, 500})
        .entropies({{0, 1.0}, {0, 8.0}});
}

void recordsScenesOfVideoBefore(Stage& stage) {
    countInTicks(stage);
    stage.insert(video("a.mp4", 1000).scenes({{0, 100}}).keyFrames({10}));
    stage.insert(video("b.mp4", 1000).scenes({{20, 500}}).keyFrames({30, 300}));
    stage.useKinds({3, 4});
    stage.runToEnd();
    const Records records = stage.results();
    expectSegments(records, {{20, 500, 30}});
    expectEqual("its score", records[0].score, durationScoreOf(0, 100, 1000));
}

void waitsForLastTask(Stage& stage) {
    countInTicks(stage);
    stage.insert(video("a.mp4", 1000).scenes({{0, 100}}).keyFrames({10}));
    stage.useKinds({4, 3, 5});
    stage.component().start();
    stage.task(0).finish();
    stage.task(1).finish();
    expectEqual("records before the last task", stage.results().size(), 0);
    stage.task(2).finish();
    expectEqual("records behind it", stage.results().size(), 1);
}

void takesEitherOfEquals(Stage& stage) {
    countInTicks(stage);
    MediaSpec spec = video("a.mp4", 1000).scenes({{0, 100}}).keyFrames({10, 20, 30});
    const Records records =
        recordsOf(stage, spec.entropies({{0, 5.0}, {0, 7.0}, {0, 7.0}}), {6, 5});
    const std::int64_t best = only(records).posOfMaxScore;
    expect(best == 20 || best == 30, "the best keyframe", "20 or 30", shown(best));
}

}  // namespace

const std::vector<ComponentCheck> rankingChecks = {
    {"ranking.best-keyframe-of-scene", "A scene's record names the keyframe of the highest score.",
     [](Stage& stage) {
         countInTicks(stage);
         MediaSpec spec = video("a.mp4", 1000).scenes({{0, 100}}).keyFrames({10, 20, 30});
         spec.entropies({{0, 3.0}, {0, 8.0}, {0, 5.0}});
         expectSegments(recordsOf(stage, spec, {6, 5}), {{0, 100, 20}});
         expectEqual("the score", only(stage.results()).score,
                     durationScoreOf(0, 100, 1000) + entropyScoreOf(8.0));
     }},
    {"ranking.one-record-per-scene", "Each scene with keyframes has one record with its bounds.",
     [](Stage& stage) {
         countInTicks(stage);
         MediaSpec spec = video("a.mp4", 1000).scenes({{5, 100}, {100, 250}, {300, 400}});
         expectSegments(recordsOf(stage, spec.keyFrames({10, 110, 300}), {4, 3}),
                        {{5, 100, 10}, {100, 250, 110}, {300, 400, 300}});
     }},
    {"ranking.records-ascend-by-position",
     "A video's records stand in ascending order of their best keyframes, each with the bounds of "
     "its own scene.",
     [](Stage& stage) {
         countInTicks(stage);
         expectSegments(recordsOf(stage, scenesAgainstOrder(), {6, 5}),
                        {{0, 2000, 100}, {10, 3000, 500}, {800, 1000, 900}});
     }},
    {"ranking.order-is-not-that-of-scores", "Scores do not decide the order of the records.",
     [](Stage& stage) {
         countInTicks(stage);
         MediaSpec spec = video("a.mp4", 1000).scenes({{0, 100}, {100, 900}, {900, 950}});
         expectSegments(recordsOf(stage, spec.keyFrames({10, 110, 910}), {4, 3}),
                        {{0, 100, 10}, {100, 900, 110}, {900, 950, 910}});
     }},
    {"ranking.scene-without-keyframes-has-none", "A scene without keyframes has no record.",
     [](Stage& stage) {
         countInTicks(stage);
         MediaSpec spec = video("a.mp4", 1000).scenes({{0, 100}, {100, 200}, {200, 300}});
         expectSegments(recordsOf(stage, spec.keyFrames({10, 210}), {4, 3}),
                        {{0, 100, 10}, {200, 300, 210}});
     }},
    {"ranking.video-without-keyframes-has-none", "A video without any keyframe has no record.",
     [](Stage& stage) {
         expectSegments(recordsOf(stage, video("a.mp4", 100 * second), {4, 3}), {});
     }},
    {"ranking.either-of-equals",
     "Of keyframes with the same highest score the record names one of them.", takesEitherOfEquals},
    {"ranking.single-task-is-not-ranked", "With a single kind a video gets no record.",
     [](Stage& stage) {
         countInTicks(stage);
         MediaSpec spec = video("a.mp4", 1000).scenes({{0, 100}}).keyFrames({10});
         expectSegments(recordsOf(stage, spec, {6}), {});
     }},
    {"ranking.comes-behind-last-task", "A video has no record before its last task has finished.",
     waitsForLastTask},
    {"ranking.keyframes-before-scenes-meet-earlier-scenes",
     "With kind 3 before kind 4 a video's keyframes are given to the scenes of the video before, "
     "and recorded with the bounds of its own.",
     recordsScenesOfVideoBefore},
};

}  // namespace validator
