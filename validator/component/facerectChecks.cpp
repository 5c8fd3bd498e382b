#include "fake_host/faces.h"
#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

constexpr KOR::KorRect first{0.1, 0.25, 0.3, 0.5};
constexpr KOR::KorRect larger{0.0, 0.0, 0.9, 0.9};

MediaSpec photoWith(const std::string& name, const std::vector<KOR::KorRect>& faces) {
    return photo(name).faceFrames({frameWith(faces)});
}

void expectRect(const Records& records, std::size_t index, const KOR::KorRect& rect) {
    expect(index < records.size(), "the number of records", "more", shown(records.size()));
    const KOR::KorRect& found = records[index].faceRectOfPhoto;
    expectEqual("the rectangle of record " + shown(index),
                std::vector<double>{found.x, found.y, found.width, found.height},
                {rect.x, rect.y, rect.width, rect.height});
}

Records runPhoto(Stage& stage, const MediaSpec& spec) {
    stage.setParam("photoNeedAnalysis", 1);
    return recordsOf(stage, spec, {2, 1});
}

void givesEachPhotoItsOwn(Stage& stage) {
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(photoWith("a.jpg", {first}));
    stage.insert(photoWith("b.jpg", {larger}));
    stage.insert(photoWith("c.jpg", {}));
    stage.useKinds({2, 1});
    stage.runToEnd();
    const Records records = stage.results();
    expectEqual("the number of records", records.size(), 3);
    expectRect(records, 0, first);
    expectRect(records, 1, larger);
    expectRect(records, 2, {});
}

void survivesMissingList(Stage& stage) {
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(photoWith("a.jpg", {first}));
    stage.useKinds({2, 1});
    stage.component().start();
    host().faults.failMaking(Product::owningList, 1);
    stage.journal();
    stage.task(1).finish();
    expectEqual("the first call", firstOf("calls", stage.journal("task1")),
                "task1.getResultList(3, 0, null, 0)");
    const Records records = stage.results();
    expectEqual("the number of records", records.size(), 1);
    expectRect(records, 0, {});
}

}  // namespace

const std::vector<ComponentCheck> facerectChecks = {
    {"facerect.is-of-first-face",
     "A photo's rectangle is exactly that of its first face, also where a later one is larger.",
     [](Stage& stage) {
         expectRect(runPhoto(stage, photoWith("a.jpg", {first, larger})), 0, first);
     }},
    {"facerect.is-of-first-frame", "Only the first frame of a photo counts.",
     [](Stage& stage) {
         MediaSpec spec = photo("a.jpg").faceFrames({frameWith({}), frameWith({larger})});
         expectRect(runPhoto(stage, spec), 0, {});
     }},
    {"facerect.without-face-is-zero", "A photo without faces keeps an all-zero rectangle.",
     [](Stage& stage) { expectRect(runPhoto(stage, photoWith("a.jpg", {})), 0, {}); }},
    {"facerect.goes-to-own-record", "Each photo of a run gets the rectangle of its own face.",
     givesEachPhotoItsOwn},
    {"facerect.leaves-score-alone", "A face does not change a photo's score of 1.0.",
     [](Stage& stage) {
         expectEqual("the score", only(runPhoto(stage, photoWith("a.jpg", {first}))).score, 1.0);
     }},
    {"facerect.is-not-logged-as-score", "The faces of a photo are not logged as scores.",
     [](Stage& stage) {
         runPhoto(stage, photoWith("a.jpg", {first}));
         expectLines("the log", loggedBy(stage, "faceDetectFinishedInternal"), {});
     }},
    {"facerect.of-video-is-zero", "The records of a video keep an all-zero rectangle.",
     [](Stage& stage) {
         countInTicks(stage);
         const Records records = recordsOf(stage,
                                           video("a.mp4", 1000)
                                               .scenes({{0, 1000}})
                                               .keyFrames({5})
                                               .faceFrames({frameWith({first})}),
                                           {6, 1});
         expectEqual("the number of records", records.size(), 1);
         expectRect(records, 0, {});
     }},
    {"facerect.no-list-leaves-zero",
     "Where no list can be made, the task is asked with null, and the rectangle stays all zero.",
     survivesMissingList},
};

}  // namespace validator
