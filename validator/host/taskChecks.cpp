#include <array>
#include <cmath>
#include <limits>

#include "validator/host/Run.h"
#include "validator/host/baseObject.h"
#include "validator/host/exports.h"
#include "validator/host/groups.h"
#include "validator/host/onThreads.h"

namespace validator {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

const std::vector<const char*> interfaces = {"IDmBaseObj", "IKorBaseTask", "IBsMediaAnalysisTask"};

void areMade(HostLibrary& host) {
    for (const std::int32_t type : {1, 2, 3, 8, 9})
        host.task({type});
    for (const Types& types : {Types{1, 9}, Types{3, 8}})
        host.task(types);
}

void answersAnyList(HostLibrary& host) {
    const auto make = host.service<KOR::IKorBaseTask*(KOR::IKORIntList*)>(exports::task);
    const auto expectAnswer = [&](KOR::IKORIntList* list, const std::string& what) {
        const Held<KOR::IKorBaseTask> task(make(list));
        if (!task) return;
        warn("createMediaAnalysisTask() makes a task of " + what);
        expectEqual("refCount() of a task of " + what, task->refCount(), 1);
    };
    expectAnswer(nullptr, "null");
    expectAnswer(host.intList().get(), "no types");
    for (const std::int32_t type : {0, 4, -1, 1000})
        expectAnswer(host.intList({type}).get(), "the unknown type " + shown(type));
    expectAnswer(host.intList({1, 77}).get(), "a known and an unknown type");
}

void leavesListAlone(HostLibrary& host) {
    const auto make = host.service<KOR::IKorBaseTask*(KOR::IKORIntList*)>(exports::task);
    const auto list = host.intList({1, 9});
    const Held<KOR::IKorBaseTask> task(make(list.get()));
    expectEqual("refCount() of the list", list->refCount(), 1);
    expectEqual("count() of the list", list->count(), 2);
    expectEqual("at(1) of the list", list->at(1), 9);
}

void givesOwnInterfaces(HostLibrary& host) {
    const auto task = host.task({1});
    auto* const base = static_cast<KOR::IDmBaseObj*>(task->queryInterface("IDmBaseObj"));
    auto* const same = static_cast<KOR::IKorBaseTask*>(task->queryInterface("IKorBaseTask"));
    KOR::IBsMediaAnalysisTask& analysis = analysisOf(*task);
    expectObject("queryInterface() of IDmBaseObj", base);
    expectObject("queryInterface() of IKorBaseTask", same);
    expectEqual("addRef() by IBsMediaAnalysisTask", analysis.addRef(), 2);
    expectEqual("refCount() by IDmBaseObj", base->refCount(), 2);
    expectEqual("release() by IKorBaseTask", same->release(), 1);
    expectEqual("setPriority() by IBsMediaAnalysisTask", analysis.setPriority(7), KOR::statusOk);
    expectEqual("getPriority() by IKorBaseTask", same->getPriority(), 7);
}

void keepsInfo(HostLibrary& host) {
    const auto task = host.task({1});
    std::array<std::uint32_t, 3> found{};
    expectEqual("setTaskInfo()", task->setTaskInfo(1, 0xFFFFFFFF, 0), KOR::statusOk);
    expectEqual("getTaskInfo()", task->getTaskInfo(found.data(), &found[1], &found[2]),
                KOR::statusOk);
    expectEqual("the first value", found[0], 1);
    expectEqual("the second value", found[1], 0xFFFFFFFF);
    expectEqual("the third value", found[2], 0);
}

void writesNoPartOfInfo(HostLibrary& host) {
    const auto task = host.task({1});
    task->setTaskInfo(1, 2, 3);
    for (std::size_t missing = 0; missing < 3; ++missing) {
        std::array<std::uint32_t, 3> found = {9, 9, 9};
        std::array<std::uint32_t*, 3> places = {found.data(), &found[1], &found[2]};
        places[missing] = nullptr;
        expectEqual("getTaskInfo() with a null", task->getTaskInfo(places[0], places[1], places[2]),
                    KOR::statusFailed);
        expectEqual("what is written", found[0] + found[1] + found[2], 27);
    }
}

void keepsName(HostLibrary& host) {
    const auto task = host.task({1});
    expectObject("getTaskName() before it is set", task->getTaskName());
    std::string name = "first \xE7\xB4\xA0";
    expectEqual("setTaskName()", task->setTaskName(name.c_str()), KOR::statusOk);
    name.assign(name.size(), 'x');
    expectEqual("getTaskName()", std::string(task->getTaskName()), "first \xE7\xB4\xA0");
    const std::string longName(10000, 'n');
    expectEqual("setTaskName()", task->setTaskName(longName.c_str()), KOR::statusOk);
    expectEqual("getTaskName() of a long name", std::string(task->getTaskName()), longName);
}

void refusesNullName(HostLibrary& host) {
    const auto task = host.task({1});
    task->setTaskName("name");
    expectEqual("setTaskName() of null", task->setTaskName(nullptr), KOR::statusFailed);
    expectEqual("getTaskName()", std::string(task->getTaskName()), "name");
}

void keepsPriority(HostLibrary& host) {
    const auto task = host.task({1});
    for (const std::uint32_t priority : {0U, 100U, 37U}) {
        expectEqual("setPriority()", task->setPriority(priority), KOR::statusOk);
        expectEqual("getPriority()", task->getPriority(), priority);
    }
}

void refusesNull(HostLibrary& host) {
    Run run(host, {1, 9});
    expectEqual("removeCallBack() of null", run.task->removeCallBack(nullptr), KOR::statusFailed);
    expectEqual("setSource() of null", run.analysis.setSource(nullptr, 0, 0), KOR::statusFailed);
    expectEqual("setSceneRanges() of null", run.analysis.setSceneRanges(nullptr),
                KOR::statusFailed);
    expectEqual("setKeyFramePositions() of null", run.analysis.setKeyFramePositions(nullptr),
                KOR::statusFailed);
    for (const std::int32_t type : {1, 9})
        expectEqual("setParameterBlock() of null", run.analysis.setParameterBlock(type, nullptr),
                    KOR::statusFailed);
    for (const std::int32_t kind : {1, 3})
        expectEqual("getResultList() into null", run.analysis.getResultList(kind, 0, nullptr, 0),
                    KOR::statusFailed);
}

void takesEmptyLists(HostLibrary& host) {
    Run run(host, {9, 3});
    run.setRanges({});
    run.setPositions({});
}

KOR::Status setScene(const Run& run, double sensitivity, double threshold) {
    const KOR::SceneParameters block{sensitivity, threshold, 0};
    return run.analysis.setParameterBlock(KOR::analysisTypeScene, &block);
}

void refusesSceneBlocks(HostLibrary& host) {
    const Run run(host, {1});
    for (const double value : {0.0, -0.0, -1.0, -1e-300, nan}) {
        expectEqual("a scene block with the sensitivity " + shown(value), setScene(run, value, 3),
                    KOR::statusFailed);
        expectEqual("a scene block with the threshold " + shown(value), setScene(run, 1, value),
                    KOR::statusFailed);
    }
}

void takesSceneBlocks(HostLibrary& host) {
    const Run run(host, {1});
    for (const double value : {1e-9, 0.5, 3.0, 1e9}) {
        expectEqual("a scene block with the sensitivity " + shown(value), setScene(run, value, 3),
                    KOR::statusOk);
        expectEqual("a scene block with the threshold " + shown(value), setScene(run, 1, value),
                    KOR::statusOk);
    }
}

KOR::Status setKeyFrame(const Run& run, const KOR::KeyFrameParameters& block) {
    return run.analysis.setParameterBlock(KOR::analysisTypeKeyFrame, &block);
}

void refusesKeyFrameBlocks(HostLibrary& host) {
    const Run run(host, {9});
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()})
        expectEqual("a keyframe block with maxPerScene " + shown(count),
                    setKeyFrame(run, {count, 4, 0, 4, 2, 2}), KOR::statusFailed);
    for (const KOR::KeyFrameParameters& block : {KOR::KeyFrameParameters{6, 0, 0, 4, 2, 2},
                                                 {6, 4, 0, 0, 2, 2},
                                                 {6, 4, 0, 4, -1, 2},
                                                 {6, 4, 0, 4, 2, -1}}) {
        if (setKeyFrame(run, block) == KOR::statusOk) {
            warn("a keyframe block with no stretch, no candidates or a negative margin is taken");
        }
    }
}

void takesKeyFrameBlocks(HostLibrary& host) {
    const Run run(host, {9});
    for (const KOR::KeyFrameParameters& block :
         {KOR::KeyFrameParameters{6, 4, 0, 4, 2, 2}, {1, 1, 0, 1, 0, 0}, {1000, 60, 0, 10, 25, 25}})
        expectEqual("setParameterBlock() of a keyframe block", setKeyFrame(run, block),
                    KOR::statusOk);
}

void refusesOtherBlocks(HostLibrary& host) {
    const Run run(host, {1, 9});
    const KOR::KeyFrameParameters block{6, 4, 0, 4, 2, 2};
    for (const std::int32_t type : {0, 2, 3, 8, 4, -1, 10})
        expectEqual("setParameterBlock() of type " + shown(type),
                    run.analysis.setParameterBlock(type, &block), KOR::statusFailed);
}

void hasNoResultsAtFirst(HostLibrary& host) {
    const Run run(host, {1, 9, 3, 8, 2});
    for (const std::int32_t kind : {1, 9, 3, 8, 2})
        expectEqual("results of kind " + shown(kind) + " before a run", run.count(kind), 0);
}

void areMadeOnThreads(HostLibrary& host) {
    std::vector<int> made(4);
    onThreads(made.size(), [&](std::size_t n) {
        for (int i = 0; i < 100; ++i) {
            const auto task = host.task({1, 9});
            task->setTaskName("one of many");
            if (task->refCount() == 1) ++made[n];
        }
    });
    expectEqual("tasks with one reference, by thread", made, std::vector<int>(4, 100));
}

}  // namespace

const std::vector<HostCheck> taskChecks = {
    {"tasks.are-made-of-types",
     "There is a task for each type, and for the pairs 1 and 9, and 3 and 8.", areMade},
    {"tasks.of-other-types",
     "A list without types or with unknown ones, or none, gives null or a sound task.",
     answersAnyList},
    {"tasks.leave-list-alone", "The list of types stays the caller's.", leavesListAlone},
    {"tasks.count-their-references",
     "A new task has one reference; addRef and release return the new count, the last one 0.",
     [](HostLibrary& host) { expectCountsReferences(asBase(host.task({1}))); }},
    {"tasks.count-references-on-threads",
     "References on a task may be taken and given back on several threads at once.",
     [](HostLibrary& host) { expectCountsOnThreads(asBase(host.task({1}))); }},
    {"tasks.keep-observer", "A task returns the destruction's observer that was set last.",
     [](HostLibrary& host) { expectKeepsObserver(asBase(host.task({1}))); }},
    {"tasks.tell-observer-once",
     "A task tells its observer once, on the thread of the last release and not before.",
     [](HostLibrary& host) { expectTellsObserverOnce(asBase(host.task({1}))); }},
    {"tasks.forget-observer", "An observer that was taken off a task or replaced is not told.",
     [](HostLibrary& host) { expectForgetsObserver(asBase(host.task({1}))); }},
    {"tasks.are-asked-for-interfaces",
     "A task has IDmBaseObj, IKorBaseTask and IBsMediaAnalysisTask by exactly these names, and "
     "none by null or other names.",
     [](HostLibrary& host) { expectInterfaces(asBase(host.task({1})), interfaces); }},
    {"tasks.queries-add-no-reference", "Asking a task for an interface adds no reference.",
     [](HostLibrary& host) { expectQueryAddsNoReference(asBase(host.task({1})), interfaces); }},
    {"tasks.give-own-interfaces",
     "The pointers that a task gives by name are exactly those of its interfaces.",
     givesOwnInterfaces},
    {"tasks.keep-info", "getTaskInfo gives the three values back that were set.", keepsInfo},
    {"tasks.write-no-part-of-info",
     "getTaskInfo with a null among the pointers fails and writes nothing.", writesNoPartOfInfo},
    {"tasks.keep-name", "A task keeps a copy of its name, of any length, and is never without one.",
     keepsName},
    {"tasks.refuse-null-name", "setTaskName fails for null, and the name stays.", refusesNullName},
    {"tasks.keep-priority", "getPriority returns the priority set last, from 0 to 100.",
     keepsPriority},
    {"tasks.refuse-null", "Null for a source, a list, a block or a listener to be removed fails.",
     refusesNull},
    {"tasks.take-empty-lists", "Lists of scenes and of positions may be empty.", takesEmptyLists},
    {"tasks.refuse-scene-blocks",
     "A scene block whose sensitivity or threshold is not above 0 is refused.", refusesSceneBlocks},
    {"tasks.take-scene-blocks", "Scene blocks with values above 0 are taken.", takesSceneBlocks},
    {"tasks.refuse-keyframe-blocks", "A keyframe block with maxPerScene below 1 is refused.",
     refusesKeyFrameBlocks},
    {"tasks.take-keyframe-blocks", "Keyframe blocks with sound values are taken.",
     takesKeyFrameBlocks},
    {"tasks.refuse-other-blocks", "A block for a type that has none is refused.",
     refusesOtherBlocks},
    {"tasks.have-no-results-at-first", "Before a run there are no results, which is no failure.",
     hasNoResultsAtFirst},
    {"tasks.are-made-on-threads", "Tasks may be made on several threads at once.",
     areMadeOnThreads},
};

}  // namespace validator
