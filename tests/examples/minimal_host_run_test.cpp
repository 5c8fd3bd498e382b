#include <filesystem>

#include <gtest/gtest.h>

#include "host/lists.h"
#include "tests/examples/MinimalHost.h"
#include "tests/examples/PlainFiles.h"

namespace minimal_host_tests {
namespace {

/// A component that runs over one material.
class MinimalHost : public ::testing::Test {
protected:
    void analyse(const Material& material, std::initializer_list<std::int32_t> kinds) {
        component_->addCallBack(&listener_);
        const auto materials = hold(HOST(createKORVoidPtrList)());
        materials->append(material.get());
        ASSERT_EQ(component_->insertMaterials(materials.get(), 0), KOR::statusOk);
        const auto list = hold(HOST(createKORIntList)());
        for (const std::int32_t kind : kinds)
            list->append(kind);
        ASSERT_EQ(component_->setAnalysisKinds(list.get()), KOR::statusOk);
        ASSERT_EQ(component_->start(), KOR::statusOk);
        listener_.waitFor(KOR::taskEventFinished);
        component_->stop();
    }

    std::vector<KOR::MaterialAnalysisResult> results() {
        const auto list = hold(HOST(createKORAutoVoidPtrList)());
        EXPECT_EQ(component_->getResults(list.get()), KOR::statusOk);
        std::vector<KOR::MaterialAnalysisResult> results;
        for (const void* element : elementsOf(list)) {
            results.push_back(*static_cast<const KOR::MaterialAnalysisResult*>(element));
            results.back().media->release();
            results.back().media->release();
        }
        return results;
    }

    /// Expects the records of makeThreeScenes(). Every scene's keyframe is rated by the first
    /// element of the lists: no face, and the two bits of the first scene.
    void expectThreeScenes() {
        const auto records = results();
        const double sizes[] = {30000001.0, 40000001.0, 30000001.0};
        const std::int64_t bounds[] = {0, 30000000, 70000000, 100000000};
        const std::int64_t best[] = {14800000, 50000000, 84800000};
        ASSERT_EQ(records.size(), 3U);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(records[i].begin, bounds[i]);
            EXPECT_EQ(records[i].end, bounds[i + 1]);
            EXPECT_EQ(records[i].posOfMaxScore, best[i]);
            EXPECT_EQ(records[i].score, sizes[i] * 0.3 / 1e8 + 0.42 + 2.0 * 0.125 * 0.1);
            EXPECT_EQ(records[i].faceRectOfPhoto.width, 0.0);
        }
    }

    PlainFiles files_;
    TaskRecorder listener_;
    Holder<KOR::IKorMaterialAnalysis> component_ = makeComponent();
};

TEST_F(MinimalHost, SingleTasksGiveTheRecordsOfThreeScenes) {
    const Material material = import(files_.makeThreeScenes());
    analyse(material, {4, 3, 1, 5});
    expectThreeScenes();
    EXPECT_EQ(listener_.milestones(), Milestones{2});
}

TEST_F(MinimalHost, CombinedTasksGiveTheSameRecords) {
    const Material material = import(files_.makeThreeScenes());
    analyse(material, {6, 7});
    expectThreeScenes();
}

TEST_F(MinimalHost, KeptRecordsAreTakenWithoutATask) {
    const Material material = import(files_.makeThreeScenes(), files_.directory());
    analyse(material, {6, 7});
    const std::string kept =
        contentOf(std::filesystem::path(sourceOf(material).getMediaInfoText("media_cache")) /
                  "analysis/result.json");
    EXPECT_NE(kept.find("\"posOfMaxScore\": 50000000"), std::string::npos);
    const std::size_t told = listener_.events().size();
    component_ = makeComponent();
    const Material again = import(files_.directory() / "three.y4m", files_.directory());
    analyse(again, {6, 7});
    EXPECT_EQ(listener_.events().size(), told + 1) << "no task, and so no progress";
    expectThreeScenes();
}

TEST_F(MinimalHost, PhotoIsAnalysedForFacesAndHasNone) {
    const Material material =
        import(files_.makePhoto("grey.pgm", [](int, int x, int) { return x; }));
    KOR::KorValue one{};
    one.asInt32 = 1;
    ASSERT_EQ(component_->setAnalysisParam("photoNeedAnalysis", &one), KOR::statusOk);
    analyse(material, {4, 3, 1, 5});
    const auto records = results();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].score, 1.0);
    EXPECT_EQ(records[0].end, 1);
    EXPECT_EQ(records[0].faceRectOfPhoto.width, 0.0);
    EXPECT_EQ(listener_.milestones(), Milestones{2});
    EXPECT_GT(listener_.events().size(), 1U) << "tasks have reported their progress";
}

TEST_F(MinimalHost, DamagedVideoIsToldAndTheRunEnds) {
    std::string bytes = contentOf(files_.makeThreeScenes());
    bytes.replace(bytes.find("FRAME", 900000), 5, "FLAME");
    const Material material = import(files_.write("bad.y4m", bytes), files_.directory());
    analyse(material, {6, 7});
    EXPECT_EQ(listener_.milestones(), (Milestones{3, 2}));
    for (const auto& entry : std::filesystem::directory_iterator(files_.directory()))
        EXPECT_TRUE(entry.is_regular_file()) << "nothing is kept: " << entry.path();
}

}  // namespace
}  // namespace minimal_host_tests
