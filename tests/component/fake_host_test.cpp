#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "host/files.h"
#include "host/geometry.h"
#include "host/logger.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

/// The fake has to keep the contract itself, or the other tests would prove nothing.
using TheFakeHost = ComponentTest;

TEST_F(TheFakeHost, ListsAnswerNullOutside) {
    const Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
    int element = 0;
    EXPECT_EQ(list->append(&element), KOR::statusOk);
    EXPECT_EQ(list->count(), 1);
    EXPECT_EQ(list->at(0), &element);
    EXPECT_EQ(list->at(1), nullptr);
    EXPECT_EQ(list->at(-1), nullptr);
    EXPECT_EQ(intList({5})->at(1), 0);
}

TEST_F(TheFakeHost, MakingFailsAtTheNumberToldOnly) {
    host().faults.failMaking(Product::intList, 2);
    const Owned<KOR::IKORIntList> first(createKORIntList());
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(createKORIntList(), nullptr);
    const Owned<KOR::IKORIntList> third(createKORIntList());
    EXPECT_NE(third, nullptr);
}

TEST_F(TheFakeHost, PathsJoinWithOneSlash) {
    using KOR::Path;
    EXPECT_EQ(KOR::PathUtil::join(Path("/cache"), Path("/analysis")).string(), "/cache/analysis");
    EXPECT_EQ(KOR::PathUtil::join(Path("/cache/"), Path("analysis")).string(), "/cache/analysis");
    EXPECT_EQ(KOR::PathUtil::join(Path(""), Path("/analysis")).string(), "/analysis");
    EXPECT_EQ(KOR::PathUtil::join(Path("/cache"), Path(nullptr)).string(), "/cache");
}

TEST_F(TheFakeHost, FilesAreRealOnes) {
    const KOR::Path directory((host().directory() / "a" / "b").string());
    EXPECT_FALSE(KOR::PathUtil::exists(directory));
    EXPECT_TRUE(KOR::DirUtil::create(directory));
    EXPECT_TRUE(KOR::PathUtil::exists(directory));
    EXPECT_FALSE(KOR::FileUtil::remove(directory));
    const KOR::Path file = KOR::PathUtil::join(directory, KOR::Path("file"));
    std::ofstream(file.string()) << "text";
    EXPECT_TRUE(KOR::FileUtil::remove(file));
    EXPECT_FALSE(KOR::FileUtil::remove(file));
}

TEST_F(TheFakeHost, TextsSplitAtEverySeparator) {
    EXPECT_EQ(KOR::StringUtil::split("a,,b", ','), (std::vector<std::string>{"a", "", "b"}));
    EXPECT_EQ(KOR::StringUtil::split("", ','), std::vector<std::string>{""});
    EXPECT_EQ(kor_strlen("abc"), 3U);
    EXPECT_EQ(kor_strlen(nullptr), 0U);
}

TEST_F(TheFakeHost, EdgesOfRectanglesAreInside) {
    const KOR::KorRect rect{0.25, 0.5, 0.25, 0.125};
    EXPECT_EQ(KOR::pointInRect({0.25, 0.5}, rect), 1);
    EXPECT_EQ(KOR::pointInRect({0.5, 0.625}, rect), 1);
    EXPECT_EQ(KOR::pointInRect({0.500001, 0.5}, rect), 0);
    EXPECT_EQ(KOR::pointInRect({0.25, 0.499}, rect), 0);
    EXPECT_EQ(KOR::centerPoint(rect).x, 0.375);
    EXPECT_EQ(KOR::centerPoint(rect).y, 0.5625);
}

TEST_F(TheFakeHost, LinesAreKeptAsTheyWereWritten) {
    KOR::KorLoggerWrapper* const logger = loggerWrapper(0);
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(loggerWrapper(1), nullptr);
    KOR::LogStream* const stream = logger->createLogStream(
        KOR::IBsLogger::info, "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis", 1,
        "KOR::KorMaterialAnalysis::f", "");
    const std::string text("a\0b\n", 4);
    stream->write(text.data(), text.size());
    stream->close();
    EXPECT_EQ(logTexts(), Lines{text});
    EXPECT_EQ(host().live.logStreams, 0);
}

TEST_F(TheFakeHost, TaskStoppedSendsEventFourOnceAsItsLast) {
    RecordingListener listener;
    Owned<KOR::IKorBaseTask> owned(createMediaAnalysisTask(intList({1}).get()));
    owned->addCallBack(&listener);
    owned->start();
    EXPECT_TRUE(task(0).running());
    owned->stop();
    owned->stop();
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{4});
}

TEST_F(TheFakeHost, TaskWithoutTheKindGivesNoResults) {
    FakeMedia& material = make(video("clip.mp4", 100).keyFrames({1, 2}));
    const Owned<KOR::IKorBaseTask> scenes(createMediaAnalysisTask(intList({1}).get()));
    const Owned<KOR::IKorBaseTask> keyFrames(createMediaAnalysisTask(intList({9}).get()));
    const Owned<KOR::IKORVoidPtrList> results(createKORAutoVoidPtrList());
    task(0).setSource(&material, 0, 0);
    task(1).setSource(&material, 0, 0);
    EXPECT_EQ(task(0).getResultList(9, 0, results.get(), 0), KOR::statusOk);
    EXPECT_EQ(results->count(), 0);
    EXPECT_EQ(task(1).getResultList(9, 0, results.get(), 0), KOR::statusOk);
    ASSERT_EQ(results->count(), 2);
    EXPECT_EQ(*static_cast<std::int64_t*>(results->at(1)), 2);
}

/// A task of these types on a material with results of every kind for single pictures.
class TheFakeHostsPictures : public ComponentTest {
protected:
    /// What the task answers when it is asked for one kind.
    Owned<KOR::IKORVoidPtrList> resultsOf(FakeTask& asked, std::int32_t kind) {
        Owned<KOR::IKORVoidPtrList> results(createKORAutoVoidPtrList());
        EXPECT_EQ(asked.getResultList(kind, 0, results.get(), 0), KOR::statusOk);
        return results;
    }

    FakeTask& taskOf(const std::vector<std::int32_t>& types) {
        owned_.reset(createMediaAnalysisTask(intList(types).get()));
        FakeMedia& material = make(video("clip.mp4", 100)
                                       .faceFrames({frameWith({}), frameWith({{0.5, 0, 0.25, 1}})})
                                       .entropies({{7, 5.5}})
                                       .blurs({{8, 90.0}, {9, 80.0}}));
        task(0).setSource(&material, 0, 0);
        return task(0);
    }

    void TearDown() override {
        owned_.reset();
        ComponentTest::TearDown();
    }

private:
    Owned<KOR::IKorBaseTask> owned_;
};

TEST_F(TheFakeHostsPictures, AreThoseOfTheSource) {
    FakeTask& asked = taskOf({3, 8, 2});
    const auto faces = resultsOf(asked, 3);
    ASSERT_EQ(faces->count(), 2);
    const auto* const frame = static_cast<KOR::FaceDetectFrame*>(faces->at(1));
    EXPECT_EQ(frame->faceCount, 1);
    EXPECT_EQ(frame->faceRects[0].width, 0.25);
    const auto samples = resultsOf(asked, 8);
    ASSERT_EQ(samples->count(), 1);
    EXPECT_EQ(static_cast<KOR::EntropySample*>(samples->at(0))->entropy, 5.5);
    const auto blurs = resultsOf(asked, 2);
    ASSERT_EQ(blurs->count(), 2);
    EXPECT_EQ(static_cast<KOR::BlurSample*>(blurs->at(1))->sharpness, 80.0);
}

TEST_F(TheFakeHostsPictures, AreOnlyThoseOfTheTasksKinds) {
    FakeTask& asked = taskOf({3});
    EXPECT_EQ(resultsOf(asked, 8)->count(), 0);
    EXPECT_EQ(resultsOf(asked, 2)->count(), 0);
}

TEST_F(TheFakeHostsPictures, CanBeLostInTheirPlace) {
    FakeTask& asked = taskOf({2});
    asked.loseElement(0);
    const auto blurs = resultsOf(asked, 2);
    ASSERT_EQ(blurs->count(), 2);
    EXPECT_EQ(blurs->at(0), nullptr);
    EXPECT_NE(blurs->at(1), nullptr);
}

TEST_F(TheFakeHostsPictures, HaveALargeFaceBehindThoseThatCount) {
    EXPECT_EQ(frameWith({smallFaceAt(0.5, 0.5)}).faceRects[1].width, 1.0);
    EXPECT_EQ(frameWith({}).faceRects[19].height, 1.0);
}

}  // namespace
}  // namespace fake_host
