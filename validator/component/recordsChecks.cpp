#include <array>
#include <bit>
#include <cstring>

#include "fake_host/FakeLists.h"
#include "fake_host/faces.h"
#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

using List = Owned<KOR::IKORVoidPtrList>;

/// A photo and a video of one scene, and a run over them.
struct MixedRun {
    explicit MixedRun(Stage& stage)
        : picture(stage.insert(photo("a.jpg"))),
          clip(stage.insert(
              video("b.mp4", 100 * second).scenes({{5, 50 * second}}).keyFrames({7}))) {
        stage.useKinds({4, 3});
        stage.runToEnd();
    }

    FakeMedia& picture;
    FakeMedia& clip;
};

/// Takes the copies of all records, which leaves two references on the material of each.
List takeResults(Stage& stage) {
    List list(createKORAutoVoidPtrList());
    expectEqual("getResults()", stage.component().getResults(list.get()), KOR::statusOk);
    return list;
}

/// The copy at `index`; fails where there is none.
KOR::MaterialAnalysisResult& copyAt(const KOR::IKORVoidPtrList& list, std::int64_t index) {
    void* const copy = list.at(index);
    expectObject("copy " + shown(index) + " of the records", copy);
    return *static_cast<KOR::MaterialAnalysisResult*>(copy);
}

/// Gives back what the copies from `first` on hold.
void giveBack(const KOR::IKORVoidPtrList& list, std::int64_t first = 0) {
    for (std::int64_t i = first; i < list.count(); ++i) {
        auto* const media = copyAt(list, i).media;
        media->release();
        media->release();
    }
}

void leavesTwoReferences(Stage& stage) {
    const MixedRun run(stage);
    const std::uint32_t before = run.clip.refCount();
    const List list = takeResults(stage);
    expectEqual("references on the video", run.clip.refCount(), before + 2);
    giveBack(*list);
}

void givesCopies(Stage& stage) {
    const MixedRun run(stage);
    const List list = takeResults(stage);
    KOR::MaterialAnalysisResult& copy = copyAt(*list, 1);
    copy.begin = -1;
    copy.score = -1.0;
    expectEqual("a later copy's begin", elementOf("records", stage.results(), 1).begin, 5);
    giveBack(*list);
}

void fillsFieldsInOrder(Stage& stage) {
    stage.setParam("photoNeedAnalysis", 1);
    FakeMedia& picture = stage.insert(
        photo("a.jpg").mediaLength(1).faceFrames({frameWith({{0.125, 0.25, 0.5, 0.375}})}));
    picture.spec.durationTicks = 1001;
    stage.useKinds({2, 1});
    stage.runToEnd();
    const List list = takeResults(stage);
    std::array<std::uint64_t, 9> words{};
    std::memcpy(words.data(), &copyAt(*list, 0), sizeof words);
    std::array<double, 4> rect{};
    std::memcpy(rect.data(), &words[5], sizeof rect);
    expectEqual("the score", std::bit_cast<double>(words[0]), 1.0);
    expectEqual("the next three fields", std::vector(words.begin() + 1, words.begin() + 4),
                {0, 1001, 500});
    expectSame("the material", std::bit_cast<void*>(words[4]),
               static_cast<KOR::IDmBaseMedia*>(&picture));
    expectEqual("the rectangle", std::vector(rect.begin(), rect.end()), {0.125, 0.25, 0.5, 0.375});
    giveBack(*list);
}

void appendsBehindOthers(Stage& stage) {
    const MixedRun run(stage);
    const List list(createKORAutoVoidPtrList());
    list->append(nullptr);
    expectEqual("getResults()", stage.component().getResults(list.get()), KOR::statusOk);
    expectEqual("the number of elements", list->count(), 3);
    expectNull("the element that was there before", list->at(0));
    giveBack(*list, 1);
}

void survivesRefusingList(Stage& stage) {
    const MixedRun run(stage);
    {
        const List list(createKORAutoVoidPtrList());
        host().faults.failAppends(Product::owningList);
        if (stage.component().getResults(list.get()) == KOR::statusOk) {
            warn("getResults() does not say that the list took no record");
        }
        host().faults = {};
        expectEqual("the number of elements", list->count(), 0);
    }
    expectEqual("the number of records", stage.results().size(), 2);
}

void outliveComponent(Stage& stage) {
    const MixedRun run(stage);
    const List list = takeResults(stage);
    const std::uint32_t before = run.clip.refCount();
    stage.releaseComponent();
    expectEqual("the position of the copy", copyAt(*list, 1).posOfMaxScore, 7);
    // Those of the component's list, of its record and of the two tasks are gone.
    expectEqual("references on its material", run.clip.refCount(), before - 4);
    giveBack(*list);
}

void releasedOnceWhenCleared(Stage& stage) {
    const MixedRun run(stage);
    const std::uint32_t before = run.clip.refCount();
    expectEqual("clearMaterials()", stage.component().clearMaterials(), KOR::statusOk);
    // The material's own and the record's; the tasks keep theirs.
    expectEqual("references on the video", run.clip.refCount(), before - 2);
    expectEqual("the number of records", stage.results().size(), 0);
}

void outliveRemovedMaterial(Stage& stage) {
    const MixedRun run(stage);
    const std::uint32_t before = run.clip.refCount();
    expectEqual("removeMaterialAt()", stage.component().removeMaterialAt(1), KOR::statusOk);
    expectEqual("references on the video", run.clip.refCount(), before - 1);
    expectSame("the record's material", elementOf("records", stage.results(), 1).media, &run.clip);
}

void expectDefault(Stage& stage, MediaSpec spec, std::int64_t duration, std::int64_t middle) {
    spec.durationTicks = duration;
    const auto record = only(recordsOf(stage, spec, {4, 3}));
    expectEqual("the score", record.score, 1.0);
    expectEqual("begin, end and position",
                std::vector<std::int64_t>{record.begin, record.end, record.posOfMaxScore},
                {0, duration, middle});
    const KOR::KorRect& rect = record.faceRectOfPhoto;
    expectEqual("the rectangle", std::vector{rect.x, rect.y, rect.width, rect.height},
                {0, 0, 0, 0});
}

}  // namespace

const std::vector<ComponentCheck> recordsChecks = {
    {"records.leave-two-references", "Each copy of a record leaves two references on its material.",
     leavesTwoReferences},
    {"records.are-copies", "What is done to a copy of a record does not change the record.",
     givesCopies},
    {"records.fields-in-order",
     "A record's bytes are the score, begin, end, position, material and rectangle, in this order.",
     fillsFieldsInOrder},
    {"records.stand-in-order-of-materials", "The records stand in the order of the materials.",
     [](Stage& stage) {
         const MixedRun run(stage);
         const Records records = stage.results();
         expectEqual("the number of records", records.size(), 2);
         expectSame("the first record's material", records[0].media, &run.picture);
         expectSame("the second record's material", records[1].media, &run.clip);
     }},
    {"records.are-appended", "getResults leaves what stands in the list in front.",
     appendsBehindOthers},
    {"records.null-list-is-refused", "getResults gives 1001 for a null list.",
     [](Stage& stage) {
         const MixedRun run(stage);
         expectEqual("getResults(null)", stage.component().getResults(nullptr), KOR::statusFailed);
     }},
    {"records.are-none-at-first", "Before any run getResults gives 0 and appends nothing.",
     [](Stage& stage) {
         stage.insert(photo("a.jpg"));
         expectEqual("the number of records", stage.results().size(), 0);
     }},
    {"records.survive-refusing-list", "A list that takes no record costs the component none.",
     survivesRefusingList},
    {"records.outlive-component",
     "The end of the component gives back all its references on materials and "
     "leaves those of copies.",
     outliveComponent},
    {"records.outlive-removed-material", "A record keeps its material when that is removed.",
     outliveRemovedMaterial},
    {"records.are-cleared-with-materials",
     "clearMaterials deletes all records and gives back the reference of each exactly once.",
     releasedOnceWhenCleared},
    {"records.are-forgotten-by-start", "A new run begins without the records of the one before.",
     [](Stage& stage) {
         const MixedRun run(stage);
         const std::uint32_t before = run.clip.refCount();
         stage.runToEnd();
         expectEqual("the number of records", stage.results().size(), 2);
         expectEqual("references on the video", run.clip.refCount(), before);
     }},
    {"records.default-of-photo",
     "A photo's record has score 1.0, goes from 0 to its duration and names the middle.",
     [](Stage& stage) { expectDefault(stage, photo("a.jpg").mediaLength(1), 500, 250); }},
    {"records.default-of-short-video",
     "A short video's record has score 1.0, goes from 0 to its duration and names the middle.",
     [](Stage& stage) { expectDefault(stage, video("a.mp4", 0), 2 * second, 1 * second); }},
    {"records.middle-is-truncated", "The middle of 5 ticks is 2.",
     [](Stage& stage) { expectDefault(stage, video("a.mp4", 0), 5, 2); }},
    {"records.middle-is-computed-as-double",
     "The middle is half of the duration as a double, with what that rounds.",
     [](Stage& stage) {
         const std::int64_t large = (std::int64_t{1} << 60U) + 129;
         const std::int64_t middle = (std::int64_t{1} << 59U) + 128;
         expectDefault(stage, photo("a.jpg").mediaLength(1), large, middle);
     }},
    {"records.default-of-photo-comes-first", "A photo has its record before its task is started.",
     [](Stage& stage) {
         stage.setParam("photoNeedAnalysis", 1);
         stage.insert(photo("a.jpg"));
         stage.useKinds({4, 1});
         stage.component().start();
         expectEqual("task 1 runs", stage.task(1).running(), true);
         expectEqual("the number of records", stage.results().size(), 1);
     }},
    {"records.lists-are-released", "No list that was made for results outlives its run.",
     [](Stage& stage) {
         MediaSpec spec = video("clip.mp4", 100 * second).keyFrames({7}).entropies({{7, 4.0}});
         stage.insert(spec.faceFrames({frameWith({})}));
         stage.useKinds({4, 3, 1, 5});
         stage.runToEnd();
         expectEqual("lists that still live", host().live.lists.load(), 0);
     }},
    {"records.photo-without-length-lasts-a-tick",
     "A photo whose own length is not above 0 has a record of one tick, whatever its duration.",
     [](Stage& stage) {
         MediaSpec spec = photo("a.jpg");
         spec.durationTicks = 700;
         const auto record = only(recordsOf(stage, spec, {4, 3}));
         expectEqual("the end", record.end, 1);
         expectEqual("the position", record.posOfMaxScore, 0);
     }},
};

}  // namespace validator
