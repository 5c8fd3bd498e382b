#include <algorithm>
#include <cstring>

#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

/// What a listener is told of for each percentage that the task reports.
std::vector<std::int32_t> toldOf(FakeTask& task, RecordingListener& listener,
                                 const std::vector<std::int32_t>& percentages) {
    std::vector<std::int32_t> told;
    for (const std::int32_t percent : percentages) {
        const std::size_t before = listener.heard().size();
        task.progress(percent);
        expectEqual("events for one progress", listener.heard().size(), before + 1);
        expectEqual("the event", listener.heard().back().event, 1);
        expectObject("the payload of progress", listener.heard().back().payloadAddress);
        told.push_back(listener.lastProgress());
    }
    return told;
}

using Percentages = std::vector<std::int32_t>;

// All percentages below are far enough from whole ones that the order of computing does not matter.

void sharesVideoAmongTasks(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3, 1});
    stage.component().start();
    expectEqual("progress of the first task", toldOf(stage.task(0), listener, {0, 1, 50, 98, 100}),
                Percentages{0, 0, 16, 32, 33});
    stage.task(0).finish();
    expectEqual("progress of the second task", toldOf(stage.task(1), listener, {0, 1, 51, 97, 100}),
                Percentages{33, 33, 50, 65, 66});
    stage.task(1).finish();
    expectEqual("progress of the third task", toldOf(stage.task(2), listener, {0, 2, 50, 98}),
                Percentages{66, 67, 83, 99});
}

void weighsMaterialsByDuration(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(video("a.mp4", 130 * second));
    stage.insert(video("b.mp4", 270 * second));
    stage.insert(video("c.mp4", 600 * second));
    stage.useKinds({4, 3});
    Percentages told;
    stage.component().start();
    while (FakeTask* const running = host().runningTask()) {
        told.push_back(toldOf(*running, listener, {53}).front());
        running->finish();
    }
    expectEqual("progress at 53 percent of each task", told, Percentages{3, 9, 20, 33, 55, 85});
}

void countsUnanalysedMaterials(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(video("short.mp4", 2 * second));
    stage.insert(shownPhoto("photo.jpg", 3 * second));
    stage.insert(video("long.mp4", 5 * second));
    stage.insert(photo("last.jpg"));
    stage.useKinds({4, 3});
    stage.component().start();
    expectEqual("progress", toldOf(stage.task(0), listener, {1, 53, 99}), Percentages{50, 63, 74});
}

void countsPhotosWithoutTasks(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(shownPhoto("a.jpg", 370));
    stage.insert(shownPhoto("b.jpg", 630));
    stage.useKinds({4, 3, 1});
    stage.component().start();
    expectEqual("progress of the first photo", toldOf(stage.task(2), listener, {0, 50, 97}),
                Percentages{0, 18, 35});
    stage.task(2).finish();
    expectEqual("progress of the second photo", toldOf(stage.task(2), listener, {1, 50, 97}),
                Percentages{37, 68, 98});
}

void countsTasksNotKinds(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    host().faults.failMaking(Product::task, 3);
    stage.useKinds({4, 3, 1});
    stage.component().start();
    expectEqual("progress with two tasks for three kinds",
                toldOf(stage.task(0), listener, {33, 51, 99}), Percentages{16, 25, 49});
}

void takesAnyPercentage(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.component().start();
    expectEqual("progress", toldOf(stage.task(0), listener, {-1, -51, 151, 1001}),
                Percentages{0, -25, 75, 500});
}

void truncatesPercentages(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(video("a.mp4", 49999 * second));
    stage.insert(video("b.mp4", 50001 * second));
    stage.useKinds({6});
    stage.component().start();
    expectEqual("progress at the end of a little less than one half",
                toldOf(stage.task(0), listener, {100}), Percentages{49});
    stage.task(0).finish();
    expectEqual("progress at the begin of the rest", toldOf(stage.task(0), listener, {0}),
                Percentages{49});
}

void answersReservedOperation(Stage& stage) {
    stage.insert(clip());
    useKindsQuietly(stage, {4, 3});
    stage.component().start();
    stage.journal();
    expectEqual("listeners of a task", stage.task(0).listeners().size(), 1U);
    expectEqual("onReserved()", stage.task(0).listeners().front()->onReserved(), KOR::statusOk);
    expectLines("what it led to", stage.journal(), {});
}

KOR::TaskEventPayload filledPayload() {
    KOR::TaskEventPayload payload{};
    std::memset(&payload, 0x5A, sizeof payload);
    payload.progress = 51;
    payload.reasonCode = -7;
    return payload;
}

/// Where the two differ behind the percentage; the size where they do not.
std::size_t firstDifference(const KOR::TaskEventPayload& one, const KOR::TaskEventPayload& other) {
    constexpr std::size_t behindProgress = sizeof one.progress;
    const auto* const a = reinterpret_cast<const char*>(&one);
    const auto* const b = reinterpret_cast<const char*>(&other);
    return static_cast<std::size_t>(
        std::mismatch(a + behindProgress, a + sizeof one, b + behindProgress).first - a);
}

/// A run over one video with two tasks, the first of which is running.
struct Running {
    explicit Running(Stage& theStage) : stage(theStage) {
        stage.component().addCallBack(&listener);
        stage.insert(clip());
        stage.useKinds({4, 3});
        stage.component().start();
        stage.journal();
    }

    Stage& stage;
    RecordingListener listener;
};

void copiesPayloadOfProgress(Stage& stage) {
    Running run(stage);
    KOR::TaskEventPayload payload = filledPayload();
    stage.task(0).send(1, 1, &payload);
    const HeardEvent heard = lastOf("events", run.listener.heard());
    expectObject("the payload", heard.payloadAddress);
    const KOR::TaskEventPayload told = heard.payload.value();
    expectEqual("the percentage", told.progress, 25);
    expectEqual("the first byte behind the percentage that was changed",
                firstDifference(told, payload), sizeof payload);
}

void leavesPayloadOfSender(Stage& stage) {
    Running run(stage);
    KOR::TaskEventPayload payload = filledPayload();
    stage.task(0).send(1, 1, &payload);
    expectEqual("the sender's percentage", payload.progress, 51);
    expectEqual("the first byte of the sender's payload that was changed",
                firstDifference(payload, filledPayload()), sizeof payload);
    expectEqual("the sender's own payload was handed on",
                lastOf("events", run.listener.heard()).payloadAddress == &payload, false);
}

/// Fails unless listeners are given the very payload that came with the event.
void expectPassedOn(Stage& stage, std::uint32_t event) {
    Running run(stage);
    KOR::TaskEventPayload payload = filledPayload();
    stage.task(0).send(1, event, &payload);
    stage.task(0).send(1, event, nullptr);
    expectEqual("the events", run.listener.events(), Events{event, event});
    expectSame("the payload", run.listener.heard()[0].payloadAddress, &payload);
    expectEqual("the first byte of it that was changed", firstDifference(payload, filledPayload()),
                sizeof payload);
    expectEqual("its percentage", payload.progress, 51);
    expectNull("the payload of an event that has none", run.listener.heard()[1].payloadAddress);
    expectEqual("the first task is running", stage.task(0).running(), true);
    expectLines("starts", startsSinceLastLook(stage), {});
}

/// Fails unless the events lead to nothing at all.
void expectIgnored(Stage& stage, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& all) {
    Running run(stage);
    KOR::TaskEventPayload payload = filledPayload();
    for (const auto& [category, event] : all) {
        stage.task(0).send(category, event, &payload);
        expectLines("what event " + std::to_string(event) + " of category " +
                        std::to_string(category) + " led to",
                    stage.journal(), {});
    }
}

void ignoresOtherCategories(Stage& stage) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> all;
    for (const std::uint32_t category : {0U, 2U, 257U, 0x80000001U, 0xFFFFFFFFU}) {
        for (std::uint32_t event = 1; event <= 4; ++event)
            all.emplace_back(category, event);
    }
    expectIgnored(stage, all);
}

void answersEverything(Stage& stage) {
    Running run(stage);
    KOR::TaskEventPayload payload = filledPayload();
    for (const std::uint32_t event : {1U, 3U, 4U, 0U, 5U, 99U})
        stage.task(0).send(1, event, &payload);
    stage.task(0).send(2, 2, &payload);
    host().finishAllTasks();
    expectLines("complaints of the host", host().complaints(), {});
}

void answersFailingStep(Stage& stage) {
    Running run(stage);
    stage.task(1).answer("setSource", KOR::statusFailed);
    stage.task(0).finish();
    expectLines("complaints of the host", host().complaints(), {});
}

void namesItselfAsSender(Stage& stage) {
    Running run(stage);
    const void* const self = stage.component().queryInterface("IDmBaseObj");
    stage.task(0).progress(50);
    stage.task(0).send(1, 3, nullptr);
    stage.task(0).send(1, 4, nullptr);
    host().finishAllTasks();
    expectEqual("the events", run.listener.events(), Events{1, 3, 4, 2});
    for (const HeardEvent& heard : run.listener.heard()) {
        expectSame("the sender of event " + std::to_string(heard.event), heard.sender, self);
        expectEqual("the category of event " + std::to_string(heard.event), heard.category, 1);
    }
}

void finishesWithoutPayload(Stage& stage) {
    Running run(stage);
    host().tasksFinishInsideStart = true;
    stage.task(0).send(1, 2, nullptr);
    expectEqual("the events", run.listener.events(), Events{2});
}

void survivesProgressWithoutPayload(Stage& stage) {
    Running run(stage);
    stage.task(0).send(1, 1, nullptr);
    for (const HeardEvent& heard : run.listener.heard()) {
        if (!heard.payload) warn("progress without a payload is told of without one");
    }
    host().finishAllTasks();
    expectEqual("the last event", lastOf("events", run.listener.events()), 2);
}

void worksUnheard(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3});
    runWithProgress(stage);
    expectEqual("the records", stage.results().size(), std::size_t{2});
}

}  // namespace

const std::vector<ComponentCheck> eventsChecks = {
    {"events.progress-shares-video-among-tasks",
     "Within a video each task counts the same, and percentages are truncated.",
     sharesVideoAmongTasks},
    {"events.progress-weighs-materials-by-duration",
     "In the progress every material counts by its duration.", weighsMaterialsByDuration},
    {"events.progress-counts-unanalysed-materials",
     "Materials that are not analysed count in the progress too, a plain photo as one tick.",
     countsUnanalysedMaterials},
    {"events.progress-of-photo-ignores-tasks",
     "In the progress of a photo the number of tasks and their order do not matter.",
     countsPhotosWithoutTasks},
    {"events.progress-counts-tasks-not-kinds",
     "Progress is shared among the tasks that there are, not among the kinds.",
     countsTasksNotKinds},
    {"events.progress-is-truncated", "Just below 50 percent is 49 percent.", truncatesPercentages},
    {"events.progress-is-cut-toward-zero",
     "Percentages outside 0 to 100 are computed with like others, and cut toward zero.",
     takesAnyPercentage},
    {"events.progress-copies-payload",
     "Listeners get the payload of progress as it is, but for the percentage.",
     copiesPayloadOfProgress},
    {"events.progress-leaves-senders-payload",
     "The payload of the sender of progress is untouched.", leavesPayloadOfSender},
    {"events.progress-without-payload-is-survived", "Progress without a payload does no harm.",
     survivesProgressWithoutPayload},
    {"events.passes-on-failures",
     "Event 3 goes to the listeners with the very payload, or none, and changes nothing.",
     [](Stage& stage) { expectPassedOn(stage, 3); }},
    {"events.passes-on-stops",
     "Event 4 goes to the listeners with the very payload, or none, and changes nothing.",
     [](Stage& stage) { expectPassedOn(stage, 4); }},
    {"events.keeps-finishes-to-itself", "That a task has finished is not told to the listeners.",
     [](Stage& stage) {
         const Running run(stage);
         stage.task(0).finish();
         expectEqual("the events", run.listener.events(), Events{});
     }},
    {"events.finish-needs-no-payload", "A task may finish without a payload.",
     finishesWithoutPayload},
    {"events.ignores-other-categories", "Events of another category than 1 lead to nothing.",
     ignoresOtherCategories},
    {"events.ignores-unknown-events", "Events other than 1 to 4 lead to nothing.",
     [](Stage& stage) {
         expectIgnored(stage, {{1, 0}, {1, 5}, {1, 6}, {1, 258}, {1, 0x80000002}, {1, 0xFFFFFFFF}});
     }},
    {"events.are-answered-with-0", "Every event is answered with 0, an ignored one too.",
     answersEverything},
    {"events.are-answered-with-0-when-a-step-fails",
     "A finish is answered with 0 even when the step that it leads to fails.", answersFailingStep},
    {"events.reserved-operation-gives-0",
     "The listener's operation that is kept for its slot returns 0 and does nothing.",
     answersReservedOperation},
    {"events.come-from-the-component",
     "Every event names the component's IDmBaseObj as its sender, and category 1.",
     namesItselfAsSender},
    {"events.need-no-listener", "A run without a listener works.", worksUnheard},
};

}  // namespace validator
