#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dynamic_library/DynamicLibrary.h"
#include "fake_host/FakeHost.h"
#include "fake_host/FakeMedia.h"
#include "fake_host/FakeTask.h"
#include "fake_host/RecordingListener.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace fake_host {
namespace {

/// The component as an editor meets it: a file that is loaded at run time. This program does not
/// link the component, but offers it a host.
class Library : public ::testing::Test {
protected:
    Library() { host().reset(); }
    ~Library() override { host().reset(); }

    Owned<KOR::IKorMaterialAnalysis> create() {
        using Factory = KOR::IKorMaterialAnalysis* (*)();
        const auto factory = reinterpret_cast<Factory>(library_.symbol("createMaterialAnalysis"));
        return Owned<KOR::IKorMaterialAnalysis>(factory == nullptr ? nullptr : factory());
    }

    /// The text of an exported key, by its mangled name.
    std::string key(const char* name) {
        const auto* const text = static_cast<const char* const*>(library_.symbol(name));
        return text == nullptr ? "" : *text;
    }

private:
    const dynamic_library::DynamicLibrary library_{MATERIAL_ANALYSIS_LIBRARY};
};

TEST_F(Library, RunsOnWhateverHostTheProgramHas) {
    auto analysis = create();
    ASSERT_NE(analysis, nullptr);
    RecordingListener listener;
    analysis->addCallBack(&listener);
    {
        const Owned<FakeMedia> clip(new FakeMedia(
            video("clip.mp4", 1000000000).keyFrames({5}).cacheIn(host().directory())));
        const Owned<KOR::IKORVoidPtrList> materials(createKORVoidPtrList());
        materials->append(asElement(*clip));
        EXPECT_EQ(analysis->insertMaterials(materials.get(), 0), KOR::statusOk);
    }
    {
        const Owned<KOR::IKORIntList> kinds(createKORIntList());
        kinds->append(KOR::analysisKindScence);
        kinds->append(KOR::analysisKindKeyFrame);
        EXPECT_EQ(analysis->setAnalysisKinds(kinds.get()), KOR::statusOk);
    }
    EXPECT_EQ(analysis->start(), KOR::statusOk);
    host().finishAllTasks();
    EXPECT_EQ(listener.events(), std::vector<std::uint32_t>{2});
    {
        const Owned<KOR::IKORVoidPtrList> records(createKORAutoVoidPtrList());
        EXPECT_EQ(analysis->getResults(records.get()), KOR::statusOk);
        ASSERT_EQ(records->count(), 1);
        const auto* const record = static_cast<KOR::MaterialAnalysisResult*>(records->at(0));
        EXPECT_EQ(record->score, 1000000001.0 * 0.3 / 1000000000.0);
        EXPECT_EQ(record->posOfMaxScore, 5);
        KOR::IDmBaseMedia* const media = record->media;
        media->release();
        media->release();
    }
    EXPECT_TRUE(std::filesystem::exists(host().directory() / "analysis" / "result.json"));
    analysis.reset();
    EXPECT_EQ(host().live.media, 0);
    EXPECT_EQ(host().live.tasks, 0);
    EXPECT_EQ(host().live.lists, 0);
    EXPECT_EQ(host().complaints(), std::vector<std::string>());
}

TEST_F(Library, HandsOnWhatAServiceThrows) {
    auto analysis = create();
    const Owned<FakeMedia> clip(new FakeMedia(video("clip.mp4", 1000000000)));
    clip->onTypeQuery = [] { throw std::bad_alloc(); };
    {
        const Owned<KOR::IKORVoidPtrList> materials(createKORVoidPtrList());
        materials->append(asElement(*clip));
        EXPECT_EQ(analysis->insertMaterials(materials.get(), 0), KOR::statusOk);
    }
    EXPECT_THROW(analysis->start(), std::bad_alloc);
}

TEST_F(Library, KeysCanBeReadByTheirNames) {
    EXPECT_EQ(key("_ZN3KOR16analysisParamKey17minScenceDurationE"), "minScenceDuration");
    EXPECT_EQ(key("_ZN3KOR16analysisParamKey24scenceDetectionThresholdE"),
              "scenceDetectionThreshold");
    EXPECT_EQ(key("_ZN3KOR16analysisParamKey23minNeedAnalysisDuartionE"),
              "minNeedAnalysisDuartion");
    EXPECT_EQ(key("_ZN3KOR16analysisParamKey17photoNeedAnalysisE"), "photoNeedAnalysis");
}

}  // namespace
}  // namespace fake_host
