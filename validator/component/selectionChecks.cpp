#include <limits>

#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

constexpr const char* minNeed = "minNeedAnalysisDuartion";
constexpr const char* photoNeed = "photoNeedAnalysis";

/// Whether a run over this one material starts the first task.
bool isAnalysed(Stage& stage, const MediaSpec& spec) {
    stage.component().clearMaterials();
    FakeMedia& material = stage.make(spec);
    stage.component().insertMaterials(materialList({&material}).get(), 0);
    stage.component().start();
    const bool runs = host().runningTask() != nullptr;
    host().finishAllTasks();
    return runs;
}

/// Fails unless a video longer than `limit` ticks is analysed, and no other.
void expectLimit(Stage& stage, std::int64_t limit) {
    expectEqual("a video at the limit is analysed", isAnalysed(stage, video("at.mp4", limit)),
                false);
    expectEqual("a video of 100 ns more is analysed",
                isAnalysed(stage, video("above.mp4", limit + 1)), true);
}

void hasDefaultLimit(Stage& stage) {
    stage.useKinds({4});
    expectLimit(stage, 2 * second);
}

void hasLimitOfParameter(Stage& stage) {
    stage.useKinds({4});
    for (const std::int32_t seconds : {12, 1, 0}) {
        stage.setParam(minNeed, seconds);
        expectLimit(stage, seconds * second);
    }
}

void hasNegativeLimit(Stage& stage) {
    stage.useKinds({4});
    stage.setParam(minNeed, -1);
    expectEqual("a video without duration is analysed", isAnalysed(stage, video("a.mp4", 0)), true);
}

void hasWideLimit(Stage& stage) {
    stage.useKinds({4});
    // In 32 bits these limits are 2,000,000 and -10,000,000 ticks.
    for (const std::int32_t seconds : {1288490189, std::numeric_limits<std::int32_t>::max()}) {
        stage.setParam(minNeed, seconds);
        expectLimit(stage, seconds * second);
    }
}

void readsLimitAtEachMaterial(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    for (const char* const name : {"a.mp4", "b.mp4", "c.mp4"})
        stage.insert(video(name, 5 * second));
    useKindsQuietly(stage, {4});
    stage.component().start();
    insideProgress(listener, [&] { stage.setParam(minNeed, 5); });
    host().finishAllTasks();
    expectLines("the starts", startsSinceLastLook(stage), {"task0 a.mp4"});
}

void takesThreeCodesAsVideos(Stage& stage) {
    stage.useKinds({4});
    for (const std::uint32_t code : {8U, 2U, 0x40000U}) {
        expectEqual("a material of the type code " + std::to_string(code) + " is analysed",
                    isAnalysed(stage, video("a", 100 * second).typeCode(code)), true);
    }
}

void takesOtherCodesAsPhotos(Stage& stage) {
    stage.useKinds({4});
    for (const std::uint32_t code : {0U, 1U, 3U, 4U, 6U, 7U, 9U, 10U, 16U, 0x20000U, 0x40002U,
                                     0x40008U, 0x80000U, 0xFFFFFFFFU}) {
        expectEqual("a material of the type code " + std::to_string(code) + " is analysed",
                    isAnalysed(stage, video("a", 100 * second).typeCode(code)), false);
        expectEqual("records of it", stage.results().size(), std::size_t{1});
    }
}

/// Fails unless a run over a photo, with photos being analysed, has these starts.
void expectStartsOnPhoto(Stage& stage, const std::vector<std::int32_t>& kinds,
                         const Lines& expected) {
    stage.setParam(photoNeed, 1);
    stage.insert(photo("photo.jpg"));
    useKindsQuietly(stage, kinds);
    stage.runToEnd();
    expectLines("the starts", startsSinceLastLook(stage), expected);
}

void analysesNoPhotoByDefault(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(photo("photo.jpg"));
    useKindsQuietly(stage, {4, 1});
    expectEqual("start()", stage.component().start(), KOR::statusOk);
    expectLines("the starts", startsSinceLastLook(stage), {});
    expectEqual("the events", listener.events(), Events{2});
    expectLines("the records", recordLines(stage),
                {"photo.jpg [0, 1) at 0: 1.0 {0.0, 0.0, 0.0, 0.0}"});
}

void analysesPhotosForAnyButZero(Stage& stage) {
    stage.useKinds({4, 1});
    for (const std::int32_t value : {1, 2, -1, std::numeric_limits<std::int32_t>::min()}) {
        stage.setParam(photoNeed, value);
        expectEqual("with " + std::to_string(value) + " a photo is analysed",
                    isAnalysed(stage, photo("photo.jpg")), true);
    }
}

void readsPhotoParameterAtEachMaterial(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    for (const char* const name : {"a.jpg", "b.jpg", "c.jpg"})
        stage.insert(photo(name));
    stage.setParam(photoNeed, 1);
    useKindsQuietly(stage, {4, 1});
    stage.component().start();
    insideProgress(listener, [&] { stage.setParam(photoNeed, 0); });
    host().finishAllTasks();
    expectLines("the starts", startsSinceLastLook(stage), {"task1 a.jpg"});
}

void collectsNothingOfPhotos(Stage& stage) {
    // What the video leaves behind would be collected for the photo that follows it.
    stage.setParam(photoNeed, 1);
    stage.insert(clip());
    stage.insert(photo("photo.jpg").cacheIn(stage.directory()));
    stage.useKinds({4, 3, 1});
    stage.runToEnd();
    expectEqual("the last record", lastOf("records", recordLines(stage)),
                "photo.jpg [0, 1) at 0: 1.0 {0.0, 0.0, 0.0, 0.0}");
    expectEqual("the number of records", stage.results().size(), std::size_t{3});
}

/// Fails unless a photo is examined without end where these kinds are listed.
void expectNoEnd(Stage& stage, const std::vector<std::int32_t>& kinds) {
    constexpr int enoughQuestions = 100;
    FakeMedia& still = stage.insert(photo("photo.jpg"));
    stage.setParam(photoNeed, 1);
    useKindsQuietly(stage, kinds);
    // It would never end, so the parameter is taken back from within it.
    int questions = 0;
    still.onTypeQuery = [&] {
        if (++questions == enoughQuestions) stage.setParam(photoNeed, 0);
    };
    stage.component().start();
    still.onTypeQuery = nullptr;
    const Lines records = recordLines(stage);
    expect(records.size() > 1, "the records of the photo", "more than one",
           std::to_string(records.size()));
    expectLines("the records", records,
                Lines(records.size(), "photo.jpg [0, 1) at 0: 1.0 {0.0, 0.0, 0.0, 0.0}"));
    expectLines("the starts", startsSinceLastLook(stage), {});
}

/// Fails unless a run over this one material, which is not analysed, gives the record.
void expectDefaultRecord(Stage& stage, const MediaSpec& spec, const std::string& expected) {
    expectEqual("the material is analysed", isAnalysed(stage, spec), false);
    expectLines("the records", recordLines(stage), {expected});
}

void coversShortVideos(Stage& stage) {
    stage.useKinds({4, 3});
    expectDefaultRecord(stage, video("a.mp4", 12345678),
                        "a.mp4 [0, 12345678) at 6172839: 1.0 {0.0, 0.0, 0.0, 0.0}");
}

void truncatesMiddle(Stage& stage) {
    const std::vector<std::pair<std::int64_t, std::int64_t>> middles = {
        {5, 2}, {1, 0}, {0, 0}, {-5, -2}, {19999999, 9999999}};
    for (const auto& [duration, middle] : middles) {
        expectDefaultRecord(stage, video("a.mp4", duration),
                            "a.mp4 [0, " + std::to_string(duration) + ") at " +
                                std::to_string(middle) + ": 1.0 {0.0, 0.0, 0.0, 0.0}");
    }
}

void halvesAsDouble(Stage& stage) {
    // 2^53 + 3 is no double: the nearest one is 2^53 + 4.
    expectDefaultRecord(stage, shownPhoto("a.jpg", 9007199254740995),
                        "a.jpg [0, 9007199254740995) at 4503599627370498: 1.0 "
                        "{0.0, 0.0, 0.0, 0.0}");
}

MediaSpec photoLasting(std::int64_t duration, std::int64_t ownLength) {
    MediaSpec spec = photo("a.jpg").mediaLength(ownLength);
    spec.durationTicks = duration;
    return spec;
}

constexpr const char* oneTick = "a.jpg [0, 1) at 0: 1.0 {0.0, 0.0, 0.0, 0.0}";

void givesPhotosOneTick(Stage& stage) {
    for (const std::int64_t ownLength : {std::int64_t{0}, std::int64_t{-1}, -second})
        expectDefaultRecord(stage, photoLasting(700, ownLength), oneTick);
}

void givesPhotosTheirDuration(Stage& stage) {
    for (const std::int64_t ownLength : {std::int64_t{1}, second})
        expectDefaultRecord(stage, photoLasting(7, ownLength),
                            "a.jpg [0, 7) at 3: 1.0 {0.0, 0.0, 0.0, 0.0}");
}

void givesSourcelessPhotosOneTick(Stage& stage) {
    expectDefaultRecord(stage, photoLasting(700, second).withoutSource(), oneTick);
    expectDefaultRecord(stage, photoLasting(700, second).withoutSourceMedia(), oneTick);
}

void ignoresOwnLengthOfVideos(Stage& stage) {
    expectDefaultRecord(stage, video("a.mp4", 600).mediaLength(0),
                        "a.mp4 [0, 600) at 300: 1.0 {0.0, 0.0, 0.0, 0.0}");
    expectDefaultRecord(stage, video("a.mp4", 600).mediaLength(90 * second),
                        "a.mp4 [0, 600) at 300: 1.0 {0.0, 0.0, 0.0, 0.0}");
}

void keepsCacheOutOfDefaults(Stage& stage) {
    stage.insert(photo("a.jpg").cacheIn(stage.directory()));
    stage.insert(video("b.mp4", second).cacheIn(stage.directory()));
    stage.writeResultFile("not a result file");
    useKindsQuietly(stage, {4, 3});
    stage.component().start();
    expectEqual("the log begins", firstOf("lines", stage.logTexts()), "auto trim result: \n");
    expectEqual("the result file", stage.resultText(), "not a result file");
    expectEqual("the records", stage.results().size(), std::size_t{2});
}

void ordersRecordsByMaterial(Stage& stage) {
    stage.insert(photo("a.jpg"));
    stage.insert(clip("b.mp4").scenes({{0, 100 * second}}).keyFrames({70}));
    stage.insert(video("c.mp4", 8));
    stage.insert(photo("d.jpg"));
    stage.useKinds({4, 3});
    stage.runToEnd();
    expectLines("the records", recordLines(stage),
                {"a.jpg [0, 1) at 0: 1.0 {0.0, 0.0, 0.0, 0.0}",
                 "b.mp4 [0, 1000000000) at 70: 0.3000000003 {0.0, 0.0, 0.0, 0.0}",
                 "c.mp4 [0, 8) at 4: 1.0 {0.0, 0.0, 0.0, 0.0}",
                 "d.jpg [0, 1) at 0: 1.0 {0.0, 0.0, 0.0, 0.0}"});
}

}  // namespace

const std::vector<ComponentCheck> selectionChecks = {
    {"selection.analyses-videos-above-two-seconds",
     "Without a parameter a video of two seconds is not analysed, and one of 100 ns more is.",
     hasDefaultLimit},
    {"selection.analyses-videos-above-parameter",
     "minNeedAnalysisDuartion gives the seconds that a video has to exceed.", hasLimitOfParameter},
    {"selection.analyses-all-above-negative-limit",
     "With a negative minNeedAnalysisDuartion even a video without duration is analysed.",
     hasNegativeLimit},
    {"selection.computes-limit-in-64-bits", "The limit in ticks is computed in 64 bits.",
     hasWideLimit},
    {"selection.reads-limit-at-each-material",
     "A change of minNeedAnalysisDuartion during a run counts from the next material on.",
     readsLimitAtEachMaterial},
    {"selection.takes-three-codes-as-videos",
     "Materials of the type codes 8, 2 and 0x40000 are analysed as videos.",
     takesThreeCodesAsVideos},
    {"selection.takes-other-codes-as-photos",
     "Materials of any other type code are photos, and only get their default record.",
     takesOtherCodesAsPhotos},
    {"selection.analyses-no-photo-by-default",
     "A photo starts no task while photoNeedAnalysis is 0.", analysesNoPhotoByDefault},
    {"selection.analyses-photos-for-any-but-0",
     "Every value of photoNeedAnalysis but 0 has photos analysed.", analysesPhotosForAnyButZero},
    {"selection.reads-photo-parameter-at-each-material",
     "A change of photoNeedAnalysis during a run counts from the next material on.",
     readsPhotoParameterAtEachMaterial},
    {"selection.starts-face-task-on-photo", "A photo runs the task of kind 1 and none before it.",
     [](Stage& stage) {
         expectStartsOnPhoto(stage, {4, 3, 1}, {"task2 photo.jpg"});
     }},
    {"selection.prefers-face-kind-on-photo",
     "For a photo kind 1 goes before a kind 7 listed first.",
     [](Stage& stage) {
         expectStartsOnPhoto(stage, {4, 7, 1}, {"task2 photo.jpg"});
     }},
    {"selection.starts-kind-7-on-photo-without-kind-1",
     "Without a kind 1 a photo runs the task of kind 7.",
     [](Stage& stage) {
         expectStartsOnPhoto(stage, {6, 4, 7}, {"task2 photo.jpg"});
     }},
    {"selection.takes-first-face-kind-on-photo",
     "Of several tasks of kind 1 a photo runs the first.",
     [](Stage& stage) {
         stage.setParam(photoNeed, 1);
         stage.insert(photo("photo.jpg"));
         useKindsQuietly(stage, {4, 1, 1});
         stage.component().start();
         expectLines("the start", startsSinceLastLook(stage), {"task1 photo.jpg"});
     }},
    {"selection.runs-kinds-behind-face-kind-on-photo",
     "Behind its face task a photo runs every kind listed after it.",
     [](Stage& stage) {
         expectStartsOnPhoto(stage, {4, 1, 5, 3},
                             {"task1 photo.jpg", "task2 photo.jpg", "task3 photo.jpg"});
     }},
    {"selection.starts-nothing-on-photo-without-face-kind",
     "Without a kind that finds faces a photo starts no task.",
     [](Stage& stage) {
         expectStartsOnPhoto(stage, {4, 3, 5}, {});
     }},
    {"selection.collects-nothing-of-photos",
     "A photo that was analysed has its default record and no other.", collectsNothingOfPhotos},
    {"selection.examines-photo-over-and-over",
     "With the face kind as the very first a photo is examined again and again, gets a record each "
     "time, and starts no task.",
     [](Stage& stage) {
         expectNoEnd(stage, {1, 4});
     }},
    {"selection.looks-for-no-later-face-kind",
     "A photo is examined again and again with a kind 1 as the very first, also where another kind "
     "1 stands behind it.",
     [](Stage& stage) {
         expectNoEnd(stage, {1, 4, 1});
     }},
    {"selection.looks-for-no-kind-7-instead",
     "A photo is examined again and again with a kind 1 as the very first, also where a kind 7 "
     "stands behind it.",
     [](Stage& stage) {
         expectNoEnd(stage, {1, 7});
     }},
    {"selection.examines-photo-for-kind-7-too",
     "Without a kind 1 a photo is examined again and again with a kind 7 as the very first.",
     [](Stage& stage) {
         expectNoEnd(stage, {7, 4});
     }},
    {"selection.covers-short-videos",
     "The default record goes from 0 to the duration, points to the middle and has score 1.0.",
     coversShortVideos},
    {"selection.truncates-middle", "The middle of a default record is truncated towards zero.",
     truncatesMiddle},
    {"selection.halves-as-double", "The middle of a default record is computed as a double.",
     halvesAsDouble},
    {"selection.gives-photos-one-tick",
     "A photo without a positive media_length lasts one tick, whatever its duration is.",
     givesPhotosOneTick},
    {"selection.gives-photos-their-duration",
     "A photo with a positive media_length lasts as long as its duration says.",
     givesPhotosTheirDuration},
    {"selection.gives-sourceless-photos-one-tick",
     "A photo without a source, or without that side of it, lasts one tick.",
     givesSourcelessPhotosOneTick},
    {"selection.ignores-media-length-of-videos",
     "A video lasts as long as its duration says, whatever its media_length is.",
     ignoresOwnLengthOfVideos},
    {"selection.keeps-cache-out-of-defaults",
     "Photos and short videos neither read nor write nor delete a result file.",
     keepsCacheOutOfDefaults},
    {"selection.orders-records-by-material", "Records stand in the order of their materials.",
     ordersRecordsByMaterial},
};

}  // namespace validator
