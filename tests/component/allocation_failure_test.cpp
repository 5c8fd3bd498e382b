#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/FakeLists.h"
#include "fake_host/faces.h"
#include "tests/component/AllocationWatch.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

/// A run of one component over some materials, and the file that lies in the first one's cache.
struct Story {
    const char* name;
    std::vector<std::int32_t> kinds;
    bool withPhotos;
    std::string file;
    int leastAllocations;  ///< fewer have not been through the whole story
};

void PrintTo(const Story& story, std::ostream* stream) {
    *stream << story.name;
}

/// A listener that allocates nothing itself.
class Counting final : public KOR::IKorCallBack {
public:
    KOR::Status onReserved() override { return KOR::statusOk; }
    KOR::Status onTaskEvent(KOR::IDmBaseObj*, std::uint32_t, std::uint32_t event, void*) override {
        if (event == KOR::taskEventFinished) ++ends;
        return 0;
    }
    int ends = 0;
};

struct Outcome {
    std::uint64_t scoreBits;
    std::int64_t begin;
    std::int64_t end;
    std::int64_t posOfMaxScore;
    std::string media;
    double faceX;

    bool operator==(const Outcome&) const = default;
};

/// Gives back what comes with the copies that getResults has put into a list.
struct GiveBack {
    KOR::IKORVoidPtrList* list;
    ~GiveBack() {
        // The fake's own look at it allocates nothing.
        for (void* const element : static_cast<FakeList<void*>*>(list)->elements()) {
            auto* const copy = static_cast<KOR::MaterialAnalysisResult*>(element);
            copy->media->release();
            copy->media->release();
        }
    }
};

MediaSpec clip(const std::string& name, const std::filesystem::path& cache) {
    return video(name, 100 * second)
        .cacheIn(cache)
        .scenes({{0, 40 * second}, {40 * second, 41 * second}, {41 * second, 100 * second}})
        .keyFrames({5 * second, 9 * second, 50 * second, 60 * second})
        .faceFrames({frameWith({}), frameWith({largeFaceAt(0.5, 0.5)})})
        .entropies({{5 * second, 4.0}, {9 * second, 7.5}});
}

/// One component's whole life, in the steps that a host takes.
class Life {
public:
    explicit Life(const Story& story) : story_(story) {
        host().reset();
        host().recording = false;
        const std::filesystem::path root = host().directory();
        make(clip("first.mp4", root / "first"));
        if (story.withPhotos) {
            make(photo("photo.jpg").faceFrames({frameWith({largeFaceAt(0.5, 0.5)})}));
        }
        make(video("short.mp4", second));
        make(clip("second.mp4", root / "second"));
        if (!story.file.empty()) {
            std::filesystem::create_directories(root / "first" / "analysis");
            std::ofstream(root / "first" / "analysis" / "result.json") << story.file;
        }
        std::vector<FakeMedia*> materials;
        for (const auto& one : materials_)
            materials.push_back(one.get());
        materialList_ = materialList(materials);
        kinds_ = intList(story.kinds);
    }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    void configure() {
        component_.reset(createMaterialAnalysis());
        component_->addCallBack(&listener_);
        component_->setTaskName("a name that is too long to be kept in place");
        component_->setIntOption(1, 2);
        KOR::KorValue yes{};
        yes.asInt32 = story_.withPhotos ? 1 : 0;
        component_->setAnalysisParam("photoNeedAnalysis", &yes);
        component_->insertMaterials(materialList_.get(), 0);
        component_->setAnalysisKinds(kinds_.get());
        isConfigured_ = true;
    }

    void run() {
        component_->start();
        while (FakeTask* const running = host().runningTask()) {
            running->progress(50);
            running->finish();
        }
    }

    /// Has the results copied, as a host does.
    void readResults() {
        const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
        const GiveBack giveBack{list.get()};
        component_->getResults(list.get());
    }

    std::vector<Outcome> outcome() const {
        std::vector<Outcome> all;
        for (const auto& record : KOR::ComponentProbe(*component_).results()) {
            all.push_back({std::bit_cast<std::uint64_t>(record.score), record.begin, record.end,
                           record.posOfMaxScore, record.media->getFileName(),
                           record.faceRectOfPhoto.x});
        }
        return all;
    }

    /// Whether it can be run. With a task or a material missing it is without them for ever.
    bool isConfigured() const { return isConfigured_; }
    int ends() const { return listener_.ends; }
    void stop() { component_->stop(); }

    /// Ends the component and all that was made for it, of which nothing may be left.
    void end() {
        component_.reset();
        kinds_.reset();
        materialList_.reset();
        for (const auto& material : materials_)
            EXPECT_EQ(material->refCount(), 1U) << material->spec.fileName;
        materials_.clear();
        EXPECT_EQ(host().live.media, 0);
        EXPECT_EQ(host().live.tasks, 0);
        EXPECT_EQ(host().live.lists, 0);
        EXPECT_EQ(host().live.logStreams, 0);
        EXPECT_EQ(host().complaints(), Lines());
        host().reset();
    }

private:
    void make(const MediaSpec& spec) { materials_.emplace_back(new FakeMedia(spec)); }

    const Story& story_;
    std::vector<Owned<FakeMedia>> materials_;
    Owned<KOR::IKORVoidPtrList> materialList_;
    Owned<KOR::IKORIntList> kinds_;
    Counting listener_;
    Owned<KOR::IKorMaterialAnalysis> component_;
    bool isConfigured_ = false;
};

/// A story that nothing disturbs: what it comes to, and how much it allocates. It also leaves the
/// host with the room in its own lists that the watched ones need.
std::vector<Outcome> undisturbed(const Story& story, std::int64_t& allocations) {
    Life life(story);
    const AllocationWatch watch(0);
    life.configure();
    life.run();
    life.readResults();
    allocations = watch.made();
    EXPECT_EQ(life.ends(), 1);
    std::vector<Outcome> outcome = life.outcome();
    life.end();
    return outcome;
}

class AllocationFailure : public ::testing::TestWithParam<Story> {
protected:
    void TearDown() override { host().reset(); }

    /// Lives the story with allocations failing from the `failing`th on. Returns whether any did.
    bool live(std::int64_t failing, Failing mode) {
        Life life(GetParam());
        AllocationWatch watch(failing, mode);
        bool isCaught = false;
        try {
            life.configure();
            life.run();
            life.readResults();
        } catch (const std::bad_alloc&) {
            isCaught = true;
        }
        watch.endPart();
        const bool hasFailed = watch.hasThrown() || watch.hasGivenNull();
        // None is swallowed. One that asks for no exception has another way, and the run its end.
        EXPECT_EQ(isCaught, watch.hasThrown());
        if (!isCaught) {
            EXPECT_EQ(life.ends(), 1);
        }
        if (life.isConfigured()) {
            if (isCaught) runAgain(life);
            EXPECT_EQ(life.outcome(), expected_);
        }
        life.end();
        EXPECT_EQ(watch.left(), 0);
        return hasFailed;
    }

    /// What has failed is over; the same component runs from the beginning to its end.
    void runAgain(Life& life) {
        life.stop();
        const int before = life.ends();
        life.run();
        EXPECT_EQ(life.ends(), before + 1);
        life.readResults();
        ++runsAgain_;
    }

    /// Lives the story again and again, with a later failure each time, until it meets none.
    void liveWithEachFailing(Failing mode) {
        std::int64_t allocations = 0;
        undisturbed(GetParam(), allocations);
        expected_ = undisturbed(GetParam(), allocations);
        std::int64_t reached = 0;
        while (!HasFailure() && live(reached + 1, mode))
            ++reached;
        EXPECT_FALSE(HasFailure()) << "with allocation " << reached + 1 << " failing";
        EXPECT_EQ(reached, allocations);
        EXPECT_GE(reached, GetParam().leastAllocations);
        EXPECT_GE(runsAgain_, GetParam().leastAllocations / 2);
        RecordProperty("allocations", std::to_string(reached));
        RecordProperty("runsAgain", runsAgain_);
        std::cout << GetParam().name << ": " << reached << " allocations failed, " << runsAgain_
                  << " runs again" << std::endl;
    }

    std::vector<Outcome> expected_;
    int runsAgain_ = 0;
};

TEST_P(AllocationFailure, LeavesNothingAndTheNextRunWhole) {
    liveWithEachFailing(Failing::onlyThatOne);
}

TEST_P(AllocationFailure, MayLastUntilEverythingIsGivenUp) {
    liveWithEachFailing(Failing::allBehindIt);
}

/// A result file with one and the same record so many times.
std::string resultFile(const std::string& kinds, const std::string& score, int count = 1) {
    std::string records;
    for (int i = 0; i < count; ++i) {
        records += (i == 0 ? "" : ", ") + (R"({"score": )" + score) +
                   R"(, "begin": 1, "end": 3, "posOfMaxScore": 2,)" +
                   R"( "faceRectOfPhoto": "1.000000,0.250000,0.500000,0.500000"})";
    }
    return R"({"version": "1.0.0.1", "analysisTypes": ")" + kinds +
           R"(", "minScenceDuration": 2, "scenceDetectionThreshold": 3.0, "result": [)" + records +
           "]}";
}

INSTANTIATE_TEST_SUITE_P(
    Of, AllocationFailure,
    ::testing::Values(Story{"SingleAnalyses", {4, 3, 1, 5}, false, "", 300},
                      Story{"CombinedAnalyses", {6, 7}, false, "", 300},
                      Story{"PhotosWithFaces", {4, 1}, true, "", 200},
                      Story{"RestoredFile", {4, 3}, false, resultFile("4,3", "0.5"), 200},
                      // More than the JSON library's stack has room for at first.
                      Story{"RestoredLongFile", {4, 3}, false, resultFile("4,3", "0.5", 40), 400},
                      // Numbers as small as this are read in a way of their own.
                      Story{"RestoredTinyNumber", {4, 3}, false, resultFile("4,3", "1e-400"), 200},
                      Story{"StaleFile", {4, 3}, false, resultFile("4,3,1", "0.5"), 200}),
    [](const auto& story) { return std::string(story.param.name); });

}  // namespace
}  // namespace fake_host
