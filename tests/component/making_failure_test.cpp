#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "tests/component/ModelledRun.h"

namespace fake_host {
namespace {

constexpr std::int64_t second = KOR::ticksPerSecond;

MediaSpec clip(const std::string& name) {
    return video(name, 100 * second)
        .scenes({{0, 40 * second}, {40 * second, 41 * second}, {41 * second, 100 * second}})
        .keyFrames({5 * second, 9 * second, 50 * second, 60 * second})
        .faceFrames({frameWith({}), frameWith({largeFaceAt(0.5, 0.5)})})
        .entropies({{5 * second, 4.0}, {9 * second, 7.5}});
}

struct Making {
    const char* name;
    Product product;
    std::vector<std::int32_t> kinds;
    bool withPhoto;
    int leastMakings;
};

void PrintTo(const Making& making, std::ostream* stream) {
    *stream << making.name;
}

/// Every making of one product fails once, over whole runs that go as their model says.
class MakingFailure : public ::testing::TestWithParam<Making> {
protected:
    /// Sets up a case in which the `failing`th making fails, none for 0.
    static void begin(ModelledRun& run, int failing) {
        const Making& making = GetParam();
        run.model.faults.failingMakings[making.product] = {failing};
        run.model.media = {clip("first.mp4"), video("short.mp4", second), clip("second.mp4")};
        if (making.withPhoto) {
            run.model.media[1] = photo("photo").faceFrames({frameWith({largeFaceAt(0.5, 0.5)})});
        }
        run.model.materials = {0, 1, 2};
        run.model.listeners = {"listener"};
        run.prepare();
        if (making.withPhoto) run.setParam("photoNeedAnalysis", 1);
        run.setKinds(making.kinds);
    }

    static bool isAtItsEnd(const ModelledRun& run) {
        return run.model.materialIndex == 3 && run.runningTask() == run.model.tasks.size();
    }
};

TEST_P(MakingFailure, GoesAsModelledAndSpoilsNoLaterRun) {
    std::size_t wholeRecords = 0;
    int makings = 0;
    {
        ModelledRun run;
        begin(run, 0);
        run.start();
        run.finishAll();
        wholeRecords = run.model.records.size();
        makings = run.model.makings(GetParam().product);
    }
    int stalled = 0;
    for (int failing = 1; failing <= makings; ++failing) {
        SCOPED_TRACE(failing);
        ModelledRun run;
        begin(run, failing);
        run.start();
        run.finishAll();
        const bool hasEveryTask = run.model.tasks.size() == run.model.kinds.size();
        if (!isAtItsEnd(run)) {
            // Only a task that is missing for ever can keep a run from its end.
            EXPECT_FALSE(hasEveryTask);
            ++stalled;
            run.stop();
        }
        run.heal();
        run.start();
        run.finishAll();
        if (hasEveryTask && run.model.kinds == GetParam().kinds) {
            EXPECT_TRUE(isAtItsEnd(run));
            EXPECT_EQ(run.model.records.size(), wholeRecords);
        }
        run.end();
        ASSERT_EQ(run.difference(), "");
    }
    EXPECT_GE(makings, GetParam().leastMakings);
    RecordProperty("makings", makings);
    RecordProperty("stalled", stalled);
    std::cout << GetParam().name << ": " << makings << " makings failed, " << stalled
              << " runs stalled" << std::endl;
}

INSTANTIATE_TEST_SUITE_P(
    Of, MakingFailure,
    ::testing::Values(Making{"ListsOfTypes", Product::intList, {4, 3, 1, 5}, false, 4},
                      Making{"ListsOfPositions", Product::longlongList, {4, 3, 1, 5}, false, 4},
                      Making{"ListsOfScenes", Product::pointerList, {4, 3, 1, 5}, false, 2},
                      Making{"ListsOfResults", Product::owningList, {4, 3, 1, 5}, false, 10},
                      Making{"ListsOfResultsOfPhotos", Product::owningList, {4, 3, 1}, true, 7},
                      Making{"ListsOfCombinedResults", Product::owningList, {6, 7}, false, 10},
                      Making{"Tasks", Product::task, {4, 3, 1, 5}, false, 4},
                      Making{"CombinedTasks", Product::task, {6, 7}, false, 2},
                      Making{"TheOnlyTask", Product::task, {6}, false, 1},
                      Making{"TasksOfPhotos", Product::task, {4, 1}, true, 2}),
    [](const auto& making) { return std::string(making.param.name); });

}  // namespace
}  // namespace fake_host
