#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "tests/component/RestoreTest.h"
#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

/// Whole runs in which result files are found, each with everything that the component does to the
/// outside, in order.
class RestoreTrace : public RunTest {
protected:
    static std::filesystem::path directoryOf(const std::string& name) {
        return host().directory() / name;
    }

    static std::filesystem::path fileOf(const std::string& name) {
        return directoryOf(name) / "analysis" / "result.json";
    }

    static void put(const std::string& name, const std::string& content) {
        std::filesystem::create_directories(directoryOf(name) / "analysis");
        std::ofstream(fileOf(name), std::ios::binary) << content;
    }

    /// 50 seconds in one scene, with a directory of its own.
    static MediaSpec footage(const std::string& name) {
        return video(name + ".mp4", 500000000).keyFrames({7}).cacheIn(directoryOf(name));
    }

    /// The same with a result file that a run with the kinds 4 and 3 takes.
    static MediaSpec keptFootage(const std::string& name) {
        put(name, ResultText{}.text());
        return footage(name);
    }

    FakeMedia& material(std::size_t index) {
        return static_cast<FakeMedia&>(*probe().materials().at(index));
    }
};

TEST_F(RestoreTrace, OfAKnownVideoBetweenNewOnes) {
    insert(footage("a"));
    insert(keptFootage("b"));
    insert(footage("c"));
    material(2).spec.durationTicks = 1000000000;
    useKindsQuietly({4, 3});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/a/analysis/result.json"
log restoreMaterialAnalysisResult: "analysisCachePath not exists"
task0.setSource(a.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 6
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(a.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 500000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 18
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/a/analysis/result.json"
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/b/analysis/result.json"
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/c/analysis/result.json"
log restoreMaterialAnalysisResult: "analysisCachePath not exists"
task0.setSource(c.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---2\n"
listener: event 1, 62
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 2\n"
task1.setSource(c.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 2\n"
listener: event 1, 87
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 2\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/c/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 0 end: 500000000 keyframe pos: 7 socre: 0.3 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: b.mp4 begin: 1 end: 3 keyframe pos: 2 socre: 0.5 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: c.mp4 begin: 0 end: 1000000000 keyframe pos: 7 socre: 0.3 face rect: {0000} \n"
listener: event 2, 100
)");
    EXPECT_EQ(contentOf(fileOf("b")), ResultText{}.text());
}

TEST_F(RestoreTrace, OfKnownVideosEndsAtOnce) {
    insert(keptFootage("a"));
    insert(keptFootage("b"));
    put("b", textOfRecord(R"("score": 2, "faceRectOfPhoto": "1.000000,2.5,-3.75,0.999999")"));
    useKindsQuietly({4, 3});
    EXPECT_EQ(component().start(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/a/analysis/result.json"
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/b/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 1 end: 3 keyframe pos: 2 socre: 0.5 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: b.mp4 begin: 0 end: 0 keyframe pos: 0 socre: 2 face rect: {12-30} \n"
listener: event 2, 100
)");
}

TEST_F(RestoreTrace, OfAKnownVideoThenPhotos) {
    setParam("photoNeedAnalysis", 1);
    insert(keptFootage("a"));
    insert(photo("b.jpg").faceFrames({frameWith({{0.25, 0.125, 0.5, 0.375}})}));
    insert(keptFootage("c"));
    put("a", ResultText{.analysisTypes = R"("4,1")"}.text());
    put("c", ResultText{.analysisTypes = R"("4,1")", .result = "[]"}.text());
    material(2).spec.durationTicks = 200000000;
    useKindsQuietly({4, 1});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/a/analysis/result.json"
task1.setSource(b.jpg, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.start
log startFaceDetect: "----Start Face Detect---素材idx: 1\n"
listener: event 1, 71
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 1\n"
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/c/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 1 end: 3 keyframe pos: 2 socre: 0.5 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: b.jpg begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0.250.1250.50.375} \n"
listener: event 2, 100
)");
}

TEST_F(RestoreTrace, OfAStaleFileWritesItAnew) {
    insert(keptFootage("a"));
    put("a", ResultText{.version = R"("1.0.0.0")"}.text());
    useKindsQuietly({4, 3});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/a/analysis/result.json"
log restoreMaterialAnalysisResult: "version changed"
task0.setSource(a.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 25
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(a.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 500000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 75
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/a/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 0 end: 500000000 keyframe pos: 7 socre: 0.3 face rect: {0000} \n"
listener: event 2, 100
)");
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/a/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 0 end: 500000000 keyframe pos: 7 socre: 0.3 face rect: {0000} \n"
listener: event 2, 100
)");
}

/// Runs of which only the starts of tasks and the records matter.
class RestoreRun : public RestoreTrace {
protected:
    /// Runs to the end and gives the starts.
    Lines startsOfRun() {
        journal();
        runToEnd();
        return starts();
    }
};

TEST_F(RestoreRun, GivesAnotherComponentTheSameRecords) {
    FakeMedia& known = make(clip()
                                .faceFrames({frameWith({largeFaceAt(0.5, 0.5)}), frameWith({})})
                                .entropies({{100000000, 7.0}, {600000000, 6.0}})
                                .cacheIn(directoryOf("a")));
    for (const auto& kinds : std::vector<std::vector<std::int32_t>>{{4, 3}, {6, 7}, {4, 3, 1, 5}}) {
        std::vector<Records> recordsOfRuns;
        for (const int starts : {static_cast<int>(kinds.size()), 0}) {
            Owned<KOR::IKorMaterialAnalysis> other(createMaterialAnalysis());
            other->insertMaterials(materialList({&known}).get(), 0);
            other->setAnalysisKinds(intList(kinds).get());
            host().startCount = 0;
            other->start();
            host().finishAllTasks();
            EXPECT_EQ(host().startCount, starts);
            recordsOfRuns.push_back(KOR::ComponentProbe(*other).results());
        }
        const Records& found = recordsOfRuns[0];
        const Records& restored = recordsOfRuns[1];
        ASSERT_EQ(found.size(), 2U);
        ASSERT_EQ(restored.size(), 2U);
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_EQ(restored[i].score, found[i].score);
            EXPECT_EQ(restored[i].begin, found[i].begin);
            EXPECT_EQ(restored[i].end, found[i].end);
            EXPECT_EQ(restored[i].posOfMaxScore, found[i].posOfMaxScore);
        }
    }
}

TEST_F(RestoreRun, StartedAgainAnalysesNothing) {
    insert(footage("a"));
    insert(footage("b"));
    useKinds({4, 3});
    EXPECT_EQ(startsOfRun().size(), 4U);
    EXPECT_EQ(startsOfRun(), Lines());
    EXPECT_EQ(startsOfRun(), Lines());
    EXPECT_EQ(probe().results().size(), 2U);
    EXPECT_EQ(listener.events(), (Events{2, 2, 2}));
}

TEST_F(RestoreRun, WithOtherSettingsAnalysesAgain) {
    insert(footage("a"));
    useKinds({4, 3});
    const Lines both = {"task0 a.mp4", "task1 a.mp4"};
    EXPECT_EQ(startsOfRun(), both);
    setParam("minScenceDuration", 3);
    EXPECT_EQ(startsOfRun(), both);
    setThreshold(3.5);
    EXPECT_EQ(startsOfRun(), both);
    // These two do not decide what is found in a video that is analysed.
    setParam("minNeedAnalysisDuartion", 1);
    setParam("photoNeedAnalysis", 1);
    EXPECT_EQ(startsOfRun(), Lines());
}

TEST_F(RestoreRun, OfVideosSharingADirectoryTakesTheFirstOnesRecords) {
    insert(footage("a"));
    insert(video("b.mp4", 900000000).keyFrames({8}).cacheIn(directoryOf("a")));
    useKinds({4, 3});
    EXPECT_EQ(startsOfRun(), (Lines{"task0 a.mp4", "task1 a.mp4"}));
    const Records all = probe().results();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[1].posOfMaxScore, 7);
    EXPECT_EQ(all[0].media, &material(0));
    EXPECT_EQ(all[1].media, &material(1));
}

TEST_F(RestoreRun, OfOneVideoTwiceAnalysesItOnce) {
    FakeMedia& twice = insert(footage("a"));
    component().insertMaterials(materialList({&twice}).get(), 1);
    useKinds({4, 3});
    EXPECT_EQ(startsOfRun(), (Lines{"task0 a.mp4", "task1 a.mp4"}));
    EXPECT_EQ(probe().results().size(), 2U);
}

TEST_F(RestoreRun, WithOneKindHasNothingToRestore) {
    insert(footage("a"));
    useKinds({6});
    EXPECT_EQ(startsOfRun(), Lines{"task0 a.mp4"});
    EXPECT_EQ(startsOfRun(), Lines{"task0 a.mp4"});
    EXPECT_EQ(contentOf(fileOf("a")), "");
}

TEST_F(RestoreRun, WithOneKindTakesAFileThatIsThere) {
    insert(footage("a"));
    put("a", ResultText{.analysisTypes = R"("6")"}.text());
    useKinds({6});
    EXPECT_EQ(startsOfRun(), Lines());
    EXPECT_EQ(probe().results().size(), 1U);
}

TEST_F(RestoreRun, OfPhotosAndShortVideosReadsNoFile) {
    setParam("photoNeedAnalysis", 1);
    insert(video("a.mp4", 2 * second).cacheIn(directoryOf("a")));
    insert(photo("b.jpg").cacheIn(directoryOf("b")));
    for (const char* const name : {"a", "b"})
        put(name, "broken");
    useKindsQuietly({4, 1});
    EXPECT_EQ(traceOfRun().find("restoreMaterialAnalysisResult"), std::string::npos);
    EXPECT_EQ(contentOf(fileOf("a")), "broken");
    EXPECT_EQ(contentOf(fileOf("b")), "broken");
    EXPECT_EQ(probe().results().size(), 2U);
}

TEST_F(RestoreRun, StoppedBeforehandReadsNoFile) {
    insert(footage("a"));
    insert(keptFootage("b"));
    useKinds({4, 3});
    component().start();
    task(0).finish();
    task(1).stopSilently();
    journal();
    component().stop();
    task(1).finish();
    EXPECT_EQ(trace(), "\ntask0.stop\ntask1.stop\n");
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(RestoreRun, StoppedWhileItSelectsStartsNoTask) {
    insert(keptFootage("a"));
    insert(footage("b"));
    useKindsQuietly({4, 3});
    material(1).onTypeQuery = [this] { component().stop(); };
    EXPECT_EQ(component().start(), KOR::statusFailed);
    EXPECT_EQ(host().startCount, 0);
    EXPECT_EQ(listener.events(), Events());
    EXPECT_EQ(probe().results().size(), 1U);
}

TEST_F(RestoreRun, StoppedWhileItRestoresTheLastStillEnds) {
    insert(keptFootage("a"));
    useKinds({4, 3});
    material(0).onTypeQuery = [this] { component().stop(); };
    EXPECT_EQ(component().start(), KOR::statusOk);
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RestoreRun, ReleasedAtItsEndFreesTheRecords) {
    insert(keptFootage("a"));
    useKinds({4, 3});
    listener.onEvent = [this](std::uint32_t event) {
        if (event == 2) releaseComponent();
    };
    component().start();
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RestoreRun, KeepsTheFileOfARunThatFindsNothingNew) {
    insert(footage("a"));
    material(0).spec.keyFrameResults.clear();
    useKinds({4, 3});
    EXPECT_EQ(startsOfRun().size(), 2U);
    const std::string written = contentOf(fileOf("a"));
    EXPECT_NE(written.find("\"result\": []"), std::string::npos);
    EXPECT_EQ(startsOfRun(), Lines());
    EXPECT_TRUE(probe().results().empty());
    EXPECT_EQ(contentOf(fileOf("a")), written);
}

}  // namespace
}  // namespace fake_host
