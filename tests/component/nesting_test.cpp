#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>

#include "tests/component/RestoreTest.h"
#include "tests/component/RunTest.h"
#include "tests/sanitizers.h"

namespace fake_host {
namespace {

/// Every task finishes inside its own start.
class Nesting : public RunTest {
protected:
    Nesting() { host().tasksFinishInsideStart = true; }

    void insertVideos(int count) {
        for (int i = 0; i < count; ++i)
            insert(video("clip.mp4", 100 * second));
    }

    /// The start lines of scene tasks so far, by the index that they print.
    std::vector<int> indicesOfStartLines() const {
        std::vector<int> indices;
        const std::string mark = "----Start Scence Detect:---素材idx---";
        for (const std::string& text : logTexts()) {
            if (text.rfind(mark, 0) == 0) indices.push_back(std::stoi(text.substr(mark.size())));
        }
        return indices;
    }
};

TEST_F(Nesting, OuterStartLinesComeLastWithTheIndexOfThatMoment) {
    insertVideos(1);
    useKinds({4, 3});
    host().takeJournal();
    EXPECT_EQ(component().start(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 1000000000))
task1.start
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 1\n"
log startScenceDetect: "----Start Scence Detect:---素材idx---1\n"
)");
}

TEST_F(Nesting, ThirtyTwoTasksNestLiterally) {
    insertVideos(32);
    useKinds({4});
    component().start();
    EXPECT_EQ(host().deepestStartDepth, 32);
    // All start lines come after the end of the run, so all print the index behind the last video.
    EXPECT_EQ(indicesOfStartLines(), std::vector<int>(32, 32));
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

TEST_F(Nesting, BeyondThatDepthDoesNotGrow) {
    insertVideos(200);
    useKinds({4});
    component().start();
    EXPECT_EQ(host().startCount, 200);
    EXPECT_GE(host().deepestStartDepth, 32);
    EXPECT_LE(host().deepestStartDepth, 33);
    EXPECT_EQ(indicesOfStartLines().size(), 200U);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

std::string clipName(int number) {
    return std::string("clip").append(std::to_string(number)).append(".mp4");
}

TEST_F(Nesting, RememberedFinishesKeepTheOrderOfTheRun) {
    constexpr int count = 100;
    for (int i = 0; i < count; ++i) {
        insert(video(clipName(i), 100 * second).keyFrames({i}));
    }
    useKinds({4, 3});
    host().takeJournal();
    component().start();
    Lines expected;
    for (int i = 0; i < count; ++i) {
        expected.push_back(std::string("task0 ").append(clipName(i)));
        expected.push_back(std::string("task1 ").append(clipName(i)));
    }
    EXPECT_EQ(starts(), expected);
    const auto results = probe().results();
    ASSERT_EQ(results.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(results[static_cast<std::size_t>(i)].posOfMaxScore, i);
    }
}

TEST_F(Nesting, ALaterTaskMayHoldWhatTheEarlierOnesDidNot) {
    insertVideos(50);
    useKinds({4, 3});
    int starts = 0;
    task(1).onCall("start", [&] { host().tasksFinishInsideStart = ++starts != 45; });
    component().start();
    EXPECT_TRUE(task(1).running());
    EXPECT_EQ(host().startDepth, 0);
    EXPECT_TRUE(listener.heard().empty());
    host().tasksFinishInsideStart = true;
    task(1).finish();
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
    EXPECT_EQ(host().startCount, 100);
}

TEST_F(Nesting, StopBeyondTheNestedLevelsEndsTheRun) {
    insertVideos(100);
    useKinds({4});
    int starts = 0;
    task(0).onCall("start", [&] {
        if (++starts == 60) component().stop();
    });
    component().start();
    EXPECT_EQ(host().startCount, 60);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{4});
    EXPECT_EQ(indicesOfStartLines().size(), 60U);
}

TEST_F(Nesting, ReleaseBehindARememberedFinishHolds) {
    host().tasksFinishInsideStart = false;
    insertVideos(100);
    useKinds({4});
    FakeTask& only = task(0);
    int starts = 0;
    only.onCall("start", [&] {
        const bool finishIsRemembered = ++starts == 33;
        only.finish();
        if (finishIsRemembered) only.send(1, KOR::taskEventFailed, nullptr);
    });
    listener.onEvent = [&](std::uint32_t) { releaseComponent(); };
    component().start();
    EXPECT_EQ(starts, 33);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{3});
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_F(Nesting, RestartForgetsARememberedFinish) {
    insertVideos(100);
    useKinds({4});
    host().tasksFinishInsideStart = false;
    int starts = 0;
    task(0).onCall("start", [&] {
        if (++starts > 33) return;
        task(0).finish();
        if (starts == 33) task(0).send(KOR::taskEventCategory, KOR::taskEventFailed, nullptr);
    });
    listener.onEvent = [&](std::uint32_t event) {
        if (event != KOR::taskEventFailed) return;
        component().stop();
        component().start();
    };
    component().start();
    EXPECT_EQ(starts, 34);
    EXPECT_EQ(probe().currentMaterialIndex(), 0);
}

TEST_F(Nesting, NextRunNestsAsTheFirstDid) {
    insertVideos(100);
    useKinds({4});
    component().start();
    host().deepestStartDepth = 0;
    component().start();
    EXPECT_GE(host().deepestStartDepth, 32);
    EXPECT_LE(host().deepestStartDepth, 33);
    EXPECT_EQ(host().startCount, 200);
}

/// Runs `action` on a thread with a stack of its own size, and waits for its end.
void runOnStackOf(std::size_t bytes, std::function<void()> action) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    pthread_t thread{};
    const auto run = [](void* work) -> void* {
        (*static_cast<std::function<void()>*>(work))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &action), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

// Sanitizers make frames several times as large.
constexpr std::size_t smallStack =
    hasAddressSanitizer || hasThreadSanitizer ? 2048 * 1024 : 256 * 1024;

TEST_F(Nesting, HundredThousandTasksFitASmallStack) {
    host().recording = false;
    FakeMedia& clip = make(video("clip.mp4", 100 * second));
    const auto list = materialList(std::vector<FakeMedia*>(100000, &clip));
    component().insertMaterials(list.get(), 0);
    useKinds({4});
    runOnStackOf(smallStack, [this] { component().start(); });
    EXPECT_EQ(host().startCount, 100000);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

/// A video whose result file, of one record, a run with the kind 4 takes.
MediaSpec knownVideo() {
    const auto file = host().directory() / "analysis" / "result.json";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << ResultText{.analysisTypes = R"("4")"}.text();
    return video("known.mp4", 100 * second).cacheIn(host().directory());
}

TEST_F(Nesting, HundredThousandRestoredVideosFitASmallStack) {
    host().recording = false;
    FakeMedia& known = make(knownVideo());
    component().insertMaterials(materialList(std::vector<FakeMedia*>(100000, &known)).get(), 0);
    useKinds({4});
    runOnStackOf(smallStack, [this] { component().start(); });
    EXPECT_EQ(host().startCount, 0);
    EXPECT_EQ(probe().results().size(), 100000U);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

TEST_F(Nesting, RestoredVideosBetweenNestedTasksAddNoDepth) {
    FakeMedia& known = make(knownVideo());
    FakeMedia& clip = make(video("clip.mp4", 100 * second));
    std::vector<FakeMedia*> both;
    for (int i = 0; i < 1000; ++i)
        both.insert(both.end(), {&known, &clip, &known});
    component().insertMaterials(materialList(both).get(), 0);
    useKinds({4});
    component().start();
    EXPECT_EQ(host().startCount, 1000);
    EXPECT_LE(host().deepestStartDepth, 33);
    EXPECT_EQ(probe().results().size(), 2000U);
    EXPECT_EQ(indicesOfStartLines().size(), 1000U);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

TEST_F(Nesting, HundredThousandPhotosFitASmallStack) {
    host().recording = false;
    FakeMedia& still = make(photo("photo.jpg"));
    const auto list = materialList(std::vector<FakeMedia*>(100000, &still));
    component().insertMaterials(list.get(), 0);
    runOnStackOf(smallStack, [this] { component().start(); });
    EXPECT_EQ(probe().results().size(), 100000U);
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
}

}  // namespace
}  // namespace fake_host
