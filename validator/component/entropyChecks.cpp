#include <random>

#include "fake_host/faces.h"
#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

MediaSpec twoScenes() {
    return video("clip.mp4", 1000).scenes({{0, 100}, {100, 200}}).keyFrames({10, 20, 110, 120});
}

Lines entropyLog(Stage& stage, MediaSpec spec, std::vector<KOR::EntropySample> samples) {
    countInTicks(stage);
    recordsOf(stage, spec.entropies(std::move(samples)), {6, 5});
    return loggedBy(stage, "entropyCalculateFinishedInternal");
}

FakeMedia& insertForScores(Stage& stage, const std::vector<std::int32_t>& kinds) {
    countInTicks(stage);
    FakeMedia& material = stage.insert(video("clip.mp4", 1000).scenes({{0, 500}}).keyFrames({10}));
    stage.useKinds(kinds);
    return material;
}

double scoreWith(Stage& stage, FakeMedia& material, double entropy) {
    material.spec.entropyResults = {{10, entropy}};
    stage.runToEnd();
    return only(stage.results()).score;
}

void multiplies(Stage& stage) {
    FakeMedia& material = insertForScores(stage, {6, 5});
    std::mt19937_64 random(stage.occasion().seed);
    std::uniform_real_distribution<double> entropies(0.0, 1e6);
    for (int i = 0; i < 200; ++i) {
        const double entropy = entropies(random);
        expectEqual("the score with entropy " + shown(entropy), scoreWith(stage, material, entropy),
                    durationScoreOf(0, 500, 1000) + entropyScoreOf(entropy));
    }
}

/// Sums of three doubles can depend on the order in which they are added.
void addsInOrderOfTasks(Stage& stage) {
    FakeMedia& material = insertForScores(stage, {6, 5, 1});
    material.spec.faceResults = {frameWith({largeFaceAt(0.5, 0.5)})};
    std::mt19937_64 random(stage.occasion().seed);
    std::uniform_real_distribution<double> entropies(0.0, 8.0);
    for (int i = 0; i < 200; ++i) {
        const double entropy = entropies(random);
        const double afterEntropy = durationScoreOf(0, 500, 1000) + entropyScoreOf(entropy);
        expectEqual("the score with entropy " + shown(entropy), scoreWith(stage, material, entropy),
                    afterEntropy + faceScoreIn(0.9, true));
    }
}

void takesFacesFirst(Stage& stage) {
    countInTicks(stage);
    recordsOf(stage, twoScenes().faceFrames({frameWith({})}).entropies({{10, 8.0}}), {6, 7});
    Lines queries = stage.journal("task1.getResultList");
    expectLines("the queries", queries,
                {"task1.getResultList(3, 0, list, 0)", "task1.getResultList(8, 0, list, 0)",
                 "task1.getResultList(8, 0, list, 0)"});
}

void readsNoneOfPhoto(Stage& stage) {
    countInTicks(stage);
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(twoScenes());
    stage.insert(photo("photo.jpg").entropies({{0, 8.0}}));
    stage.useKinds({6, 7});
    stage.component().start();
    stage.task(0).finish();
    stage.task(1).finish();
    stage.journal();
    stage.task(1).finish();
    expectLines("the queries for the photo", stage.journal("task1.getResultList"),
                {"task1.getResultList(3, 0, list, 0)"});
}

void asksNothingWithoutScenes(Stage& stage) {
    stage.insert(video("clip.mp4", 100 * second).entropies({{0, 8.0}}));
    stage.useKinds({5, 4});
    stage.component().start();
    stage.journal();
    stage.task(0).finish();
    expectLines("what happens first", firstLines(stage.journal(), 3),
                {"log entropyCalculateFinishedInternal: \"entropy score result: {\"",
                 "log entropyCalculateFinishedInternal: \"}\\n\"",
                 "log entropyCalculateFinished: \"----Finish Entropy Value---素材idx: 0\\n\""});
}

}  // namespace

const std::vector<ComponentCheck> entropyChecks = {
    {"entropy.of-8-adds-a-tenth", "An entropy of 8 adds exactly 0.1.",
     [](Stage& stage) {
         FakeMedia& material = insertForScores(stage, {6, 5});
         expectEqual("the score", scoreWith(stage, material, 8.0),
                     durationScoreOf(0, 500, 1000) + 0.1);
     }},
    {"entropy.multiplies",
     "The entropy score is the double that multiplying by 0.125 and by 0.1 gives.", multiplies},
    {"entropy.is-not-clamped", "Entropies below 0 and above 8 count as they are.",
     [](Stage& stage) {
         FakeMedia& material = insertForScores(stage, {6, 5});
         for (const double entropy : {-8.0, 0.0, 16.0, 1e300}) {
             expectEqual("the score with entropy " + shown(entropy),
                         scoreWith(stage, material, entropy),
                         durationScoreOf(0, 500, 1000) + entropyScoreOf(entropy));
         }
     }},
    {"entropy.is-added-in-order-of-tasks",
     "Scores are added up in the order in which their tasks finish.", addsInOrderOfTasks},
    {"entropy.samples-begin-anew-for-each-scene",
     "The n-th sample belongs to the n-th keyframe of every scene.",
     [](Stage& stage) {
         expectLines("the log",
                     entropyLog(stage, twoScenes(), {{1, 8.0}, {2, 4.0}, {3, 2.0}, {4, 1.0}}),
                     {"entropy score result: {", "[1:0.100000]", "[2:0.050000]", "[1:0.100000]",
                      "[2:0.050000]", "}\\n"});
     }},
    {"entropy.keyframes-without-sample-get-nothing",
     "Keyframes beyond the samples get no entropy score.",
     [](Stage& stage) {
         expectLines("the log", entropyLog(stage, twoScenes(), {{1, -8.0}}),
                     {"entropy score result: {", "[1:-0.100000]", "[1:-0.100000]", "}\\n"});
         const Records records = stage.results();
         expectEqual("the number of records", records.size(), 2);
         expectEqual("the best keyframe", records[0].posOfMaxScore, 20);
         expectEqual("its score", records[0].score, durationScoreOf(0, 100, 1000));
     }},
    {"entropy.log-has-sample-position",
     "The log names the position of the sample, which is not compared with that of the keyframe.",
     [](Stage& stage) {
         expectLines("the log",
                     entropyLog(stage, video("clip.mp4", 1000).scenes({{0, 100}}).keyFrames({10}),
                                {{-77, 0.5}}),
                     {"entropy score result: {", "[-77:0.006250]", "}\\n"});
     }},
    {"entropy.is-asked-for-once-per-scene",
     "The task is asked for its samples once for each scene, for one without keyframes too.",
     [](Stage& stage) {
         countInTicks(stage);
         MediaSpec spec = video("clip.mp4", 1000);
         recordsOf(stage, spec.scenes({{0, 100}, {100, 200}, {200, 300}}).keyFrames({10}), {6, 5});
         expectLines("the queries", stage.journal("task1.getResultList"),
                     Lines(3, "task1.getResultList(8, 0, list, 0)"));
     }},
    {"entropy.needs-scenes", "Without any scene a finished entropy task is not asked for samples.",
     asksNothingWithoutScenes},
    {"entropy.comes-behind-faces-in-kind-7",
     "A task of kind 7 is asked for its faces first and then for its samples.", takesFacesFirst},
    {"entropy.of-photo-is-not-read", "A photo's task of kind 7 is asked for its faces alone.",
     readsNoneOfPhoto},
};

}  // namespace validator
