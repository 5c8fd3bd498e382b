#include <memory>
#include <utility>

#include "fake_host/FakeLists.h"
#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

constexpr const char* handedRanges = "task1.setSceneRanges";

/// The call by which a run with the kinds 4 and 3 tells its keyframe task the scenes.
Lines rangesAfter(Stage& stage, const MediaSpec& spec) {
    recordsOf(stage, spec, {4, 3});
    return stage.journal(handedRanges);
}

void expectRanges(Stage& stage, std::vector<KOR::TickRange> found, const std::string& kept) {
    expectLines("the scenes handed over",
                rangesAfter(stage, video("clip.mp4", 100 * second).scenes(std::move(found))),
                {std::string(handedRanges) + "(" + kept + ")"});
}

/// Gets one more scene while its last one is read.
class GrowingList final : public Counted<KOR::IKORVoidPtrList> {
public:
    explicit GrowingList(KOR::TickRange late) : Counted(host().live.lists), late_(late) {}

    std::int64_t count() const override { return list_->count(); }

    void* at(std::int64_t index) const override {
        if (index + 1 == list_->count() && late_.end != 0) {
            list_->append(new KOR::TickRange(std::exchange(late_, {})));
        }
        return list_->at(index);
    }

    KOR::Status append(void* element) override { return list_->append(element); }

private:
    mutable KOR::TickRange late_;
    Owned<FakeList<void*>> list_{new FakeList<void*>(Product::owningList)};
};

void asksCountAnew(Stage& stage) {
    const KOR::TickRange late{50 * second, 60 * second};
    stage.insert(video("clip.mp4", 100 * second).scenes({{0, 50 * second}}));
    stage.useKinds({4, 3});
    stage.component().start();
    host().makeOwningList = [late] { return new GrowingList(late); };
    stage.task(0).finish();
    expectLines("the scenes handed over", stage.journal(handedRanges),
                {"task1.setSceneRanges([0, 500000000) [500000000, 600000000))"});
}

void keepsScenesWithoutTask(Stage& stage) {
    stage.insert(video("a.mp4", 100 * second).scenes({{5, 50 * second}}));
    stage.insert(video("b.mp4", 100 * second).scenes({{7, 70 * second}}));
    stage.useKinds({4, 3});
    stage.component().start();
    stage.task(0).finish();
    stage.task(1).finish();
    stage.journal();
    stage.task(0).hideAnalysisInterface();
    stage.task(0).finish();
    expectLines("the calls", stage.journal("task1.set"),
                {"task1.setSource(b.mp4, 0, 0)", "task1.setPriority(100)",
                 "task1.setParameterMode(1)", "task1.setSceneRanges([5, 500000000))"});
}

void fallsBackToOwnDuration(Stage& stage) {
    MediaSpec picture = photo("photo.jpg");
    picture.durationTicks = 7;
    stage.setParam("photoNeedAnalysis", 1);
    recordsOf(stage, picture, {2, 1, 6});
    const Lines lines = loggedBy(stage, "scenceAndKeyframeDetectFinished");
    expectEqual("the number of lines", lines.size(), 3);
    expectEqual("the line of the scene", lines[2], "scence [0,7) key frame position: {  } \\n ");
}

}  // namespace

const std::vector<ComponentCheck> scenesChecks = {
    {"scenes.shortest-allowed-is-kept",
     "A scene of exactly minScenceDuration seconds is kept, with the default of 2.",
     [](Stage& stage) {
         expectRanges(stage, {{7, 20000007}}, "[7, 20000007)");
     }},
    {"scenes.one-tick-too-short-is-dropped",
     "A scene one tick shorter than minScenceDuration seconds is dropped.",
     [](Stage& stage) {
         expectRanges(stage, {{0, 19999999}, {20000000, 500000000}}, "[20000000, 500000000)");
     }},
    {"scenes.minimum-is-read-at-intake",
     "minScenceDuration counts as it stands when the scene task finishes.",
     [](Stage& stage) {
         stage.insert(
             video("clip.mp4", 100 * second).scenes({{0, 30000000}, {40000000, 90000000}}));
         stage.useKinds({4, 3});
         stage.component().start();
         stage.setParam("minScenceDuration", 5);
         stage.task(0).finish();
         expectLines("the scenes handed over", stage.journal(handedRanges),
                     {"task1.setSceneRanges([40000000, 90000000))"});
     }},
    {"scenes.zero-length-is-kept-at-minimum-0",
     "A scene of no length is kept while minScenceDuration is 0.",
     [](Stage& stage) {
         stage.setParam("minScenceDuration", 0);
         expectRanges(stage, {{50, 50}}, "[50, 50)");
     }},
    {"scenes.slightly-reversed-is-kept-at-minimum-0",
     "A scene that ends less than a second before its begin is kept while minScenceDuration is 0.",
     [](Stage& stage) {
         stage.setParam("minScenceDuration", 0);
         expectRanges(stage, {{9999999, 0}}, "[9999999, 0)");
     }},
    {"scenes.reversed-by-a-second-is-dropped",
     "A scene that ends a second before its begin is dropped while minScenceDuration is 0.",
     [](Stage& stage) {
         stage.setParam("minScenceDuration", 0);
         expectRanges(stage, {{10000000, 0}, {5, 6}}, "[5, 6)");
     }},
    {"scenes.negative-minimum-counts-as-it-is",
     "With a minScenceDuration of -1 a scene reversed by less than two seconds is kept, and one "
     "reversed by two is dropped.",
     [](Stage& stage) {
         stage.setParam("minScenceDuration", -1);
         expectRanges(stage, {{19999999, 0}, {20000000, 0}}, "[19999999, 0)");
     }},
    {"scenes.none-found-is-one-scene",
     "A video in which no scene was found is one scene from 0 to its duration.",
     [](Stage& stage) { expectRanges(stage, {}, "[0, 1000000000)"); }},
    {"scenes.all-too-short-is-one-scene",
     "A video whose scenes are all too short is one scene from 0 to its duration.",
     [](Stage& stage) {
         expectRanges(stage, {{5, 10}, {10, 20}}, "[0, 1000000000)");
     }},
    {"scenes.one-scene-ends-at-own-duration",
     "The one scene of a material without scenes ends at the duration that the media object itself "
     "gives, also of a photo whose own length is unknown.",
     fallsBackToOwnDuration},
    {"scenes.no-list-is-one-scene",
     "Where no list can be made, the task is asked with null, and the video is one scene.",
     [](Stage& stage) {
         stage.insert(video("clip.mp4", 100 * second).scenes({{0, 50 * second}}));
         stage.useKinds({4, 3});
         stage.component().start();
         host().faults.failMaking(Product::owningList, 1);
         stage.journal();
         stage.task(0).finish();
         const Lines lines = stage.journal("task");
         expectEqual("the first call", firstOf("calls", lines),
                     "task0.getResultList(1, 0, null, 0)");
         expectEqual("the scenes handed over", elementOf("calls", lines, 4),
                     "task1.setSceneRanges([0, 1000000000))");
     }},
    {"scenes.count-is-asked-anew",
     "The list's count is asked again after every element: one that came late is taken in.",
     asksCountAnew},
    {"scenes.order-is-kept",
     "Scenes stay in the order in which the task gives them, overlapping ones as they are.",
     [](Stage& stage) {
         expectRanges(stage, {{300000000, 500000000}, {0, 400000000}},
                      "[300000000, 500000000) [0, 400000000)");
     }},
    {"scenes.of-video-before-are-forgotten",
     "The scenes of a video replace those of the one before.",
     [](Stage& stage) {
         stage.insert(video("a.mp4", 100 * second).scenes({{0, 50 * second}}));
         stage.insert(video("b.mp4", 100 * second).scenes({{7, 70 * second}}));
         stage.useKinds({4, 3});
         stage.runToEnd();
         expectLines(
             "the scenes handed over", stage.journal(handedRanges),
             {"task1.setSceneRanges([0, 500000000))", "task1.setSceneRanges([7, 700000000))"});
     }},
    {"scenes.stay-where-task-is-missing",
     "A scene task that gives no analysis interface leaves the scenes as they were.",
     keepsScenesWithoutTask},
};

}  // namespace validator
