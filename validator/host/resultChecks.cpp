#include <algorithm>
#include <map>
#include <set>

#include "validator/host/BlockWatch.h"
#include "validator/host/FullList.h"
#include "validator/host/Run.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

const std::vector<std::int32_t> kinds = {1, 9, 3, 8, 2};

/// How large an element is, by its kind.
const std::map<std::int32_t, std::size_t> sizes = {{1, sizeof(KOR::TickRange)},
                                                   {9, sizeof(std::int64_t)},
                                                   {3, sizeof(KOR::FaceDetectFrame)},
                                                   {8, sizeof(KOR::EntropySample)},
                                                   {2, sizeof(KOR::BlurSample)}};

/// The bytes of all results of one kind.
std::string bytesOf(const HostLibrary& host, KOR::IBsMediaAnalysisTask& task, std::int32_t kind) {
    const auto list = host.owningList();
    std::string bytes;
    for (const void* const element : resultsOf(task, kind, *list))
        bytes.append(static_cast<const char*>(element), sizes.at(kind));
    return bytes;
}

void areCompleteInside(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1, 9}, video.source);
    std::map<std::int32_t, std::string> inside;
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventFinished) return;
        for (const std::int32_t kind : kinds)
            inside[kind] = bytesOf(host, run.analysis, kind);
    });
    run.finish();
    expect(!inside[1].empty(), "the scenes inside event 2", "at least one", "none");
    for (const std::int32_t kind : kinds)
        expect(inside[kind] == bytesOf(host, run.analysis, kind),
               "results of kind " + shown(kind) + " inside event 2", "those of afterwards",
               "others");
}

void areRepeated(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1, 9}, video.source);
    run.finish();
    for (const std::int32_t kind : {1, 9}) {
        const std::string first = bytesOf(host, run.analysis, kind);
        expect(!first.empty(), "results of kind " + shown(kind), "at least one", "none");
        for (int i = 0; i < 5; ++i)
            expect(bytesOf(host, run.analysis, kind) == first,
                   "results of kind " + shown(kind) + " when asked again", "the same", "others");
    }
}

void areOwnBlocks(HostLibrary& host) {
    const Material video = host.video();
    Run scenes(host, {1, 9}, video.source);
    scenes.finish();
    Run pictures(host, {3, 8}, video.source);
    pictures.setPositions({0, second});
    pictures.finish();
    const BlockWatch watch;
    for (const std::int32_t kind : {1, 9, 3, 8}) {
        KOR::IBsMediaAnalysisTask& task =
            kind == 1 || kind == 9 ? scenes.analysis : pictures.analysis;
        // Both lists live, so that equal addresses would be the same block.
        const auto list = host.owningList();
        const auto other = host.owningList();
        std::set<const void*> blocks;
        for (auto* const each : {list.get(), other.get()}) {
            for (const void* const element : resultsOf(task, kind, *each)) {
                expect(watch.sizeOf(element) >= sizes.at(kind), "an element of kind " + shown(kind),
                       "a block from operator new, large enough", "something else");
                expect(blocks.insert(element).second, "an element of kind " + shown(kind),
                       "a block of its own", "that of another element");
            }
        }
        expect(!blocks.empty(), "results of kind " + shown(kind), "at least one", "none");
    }
}

void areAppended(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.finish();
    void* const first = ::operator new(8);
    const auto list = host.owningList({first});
    const std::int64_t own = run.count(1);
    resultsOf(run.analysis, 1, *list);
    resultsOf(run.analysis, 1, *list);
    expectEqual("count() of a list with one element that is filled twice", list->count(),
                1 + 2 * own);
    expectSame("at(0) of that list", list->at(0), first);
}

void tellOfFullLists(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {3, 8}, video.source);
    run.setPositions({0, second, 2 * second});
    run.finish();
    for (const std::size_t room : {std::size_t{0}, std::size_t{2}}) {
        const BlockWatch watch;
        FullList list(room);
        expectEqual("getResultList() into a list that takes " + shown(room) + " elements",
                    run.analysis.getResultList(3, 0, &list, 0), KOR::statusFailed);
        expectEqual("the elements that it has then", list.elements().size(), room);
        // Those of the list may be larger.
        const std::size_t live = watch.liveOfSize(sizeof(KOR::FaceDetectFrame));
        expectEqual("blocks that are left behind", std::max(live, room) - room, std::size_t{0});
    }
}

void areNoneOfOtherKinds(HostLibrary& host) {
    const Material video = host.video();
    for (const std::int32_t type : kinds) {
        Run run(host, {type}, video.source);
        if (type != 1 && type != 9) run.setPositions({0});
        run.finish();
        for (const std::int32_t kind : {1, 9, 3, 8, 2, 0, 4, 77, -1}) {
            if (kind != type) {
                expectEqual("results of kind " + shown(kind) + " of a task of type " + shown(type),
                            run.count(kind), 0);
            }
        }
    }
}

void outliveMaterial(HostLibrary& host) {
    Material video = host.video();
    Run run(host, {1, 9}, video.source);
    run.finish();
    const std::string before = bytesOf(host, run.analysis, 1);
    video.object.reset();
    expect(!before.empty() && bytesOf(host, run.analysis, 1) == before,
           "the scenes when the material has gone", "those of before", "others");
}

}  // namespace

const std::vector<HostCheck> resultChecks = {
    {"results.are-complete-inside-finished",
     "Inside event 2 a run's results are complete, and what they are afterwards.",
     areCompleteInside},
    {"results.are-repeated", "The results are the same however often they are asked for.",
     areRepeated},
    {"results.are-blocks-of-their-own",
     "Each element is a copy in a block of its own from operator new.", areOwnBlocks},
    {"results.are-appended", "Results are appended to what a list has already.", areAppended},
    {"results.tell-of-full-lists",
     "A list that takes no more makes getResultList fail, keeps what it has taken, and nothing is "
     "left behind.",
     tellOfFullLists},
    {"results.are-none-of-other-kinds",
     "A kind that a task does not compute has no results, which is no failure.",
     areNoneOfOtherKinds},
    {"results.outlive-the-material", "The results of a run stay when its material goes.",
     outliveMaterial},
};

}  // namespace validator
