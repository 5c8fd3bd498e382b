#include <filesystem>
#include <limits>
#include <utility>

#include "validator/component/groups.h"
#include "validator/component/kept.h"
#include "validator/component/unopenable.h"

namespace validator {
namespace {

namespace fs = std::filesystem;

void startsNoTask(Stage& stage) {
    RecordingListener listener;
    insertKept(stage);
    stage.component().addCallBack(&listener);
    stage.writeResultFile(KeptText().text());
    stage.journal();
    expectEqual("start()", stage.component().start(), KOR::statusOk);
    expectLines("the run", stage.journal(),
                {"log restoreMaterialAnalysisResult: \"read analysisCachePath: "
                 "<dir>/analysis/result.json\"",
                 "log finishedAllAnalysis: \"auto trim result: \\n\"",
                 "log finishedAllAnalysis: \"fileName: clip.mp4 begin: 1 end: 3 keyframe pos: 2 "
                 "socre: 0.5 face rect: {0000} \\n\"",
                 "listener: event 2, 100"});
    stage.component().removeCallBack(&listener);
}

void takesOwnFile(Stage& stage) {
    FakeMedia& material = insertKept(stage);
    material.spec.sceneResults = {{5, 40 * second}, {40 * second, 99 * second}};
    material.spec.keyFrameResults = {7, 50 * second};
    stage.runToEnd();
    const Records analysed = stage.results();
    const std::string written = stage.resultText();
    const int starts = host().startCount;
    stage.runToEnd();
    const Records restored = stage.results();
    expectEqual("starts of tasks", host().startCount.load(), starts);
    expectEqual("the file", stage.resultText(), written);
    expectEqual("the number of records", analysed.size(), 2);
    expectEqual("the number of records taken from the file", restored.size(), 2);
    for (std::size_t i = 0; i < restored.size(); ++i) {
        expectReadBack(restored[i].score, analysed[i].score);
        expectEqual("begin", restored[i].begin, analysed[i].begin);
        expectEqual("end", restored[i].end, analysed[i].end);
        expectEqual("the position", restored[i].posOfMaxScore, analysed[i].posOfMaxScore);
        expectSame("the material", restored[i].media, &material);
    }
}

void replacesRefusedFile(Stage& stage) {
    insertKept(stage);
    stage.writeResultFile(KeptText{.version = R"("1.0.0.2")"}.text());
    stage.runToEnd();
    const std::string text = stage.resultText();
    expect(text.find("\"version\": \"1.0.0.1\"") != std::string::npos, "the file",
           "one of this version", text);
    expectEqual("the number of records", stage.results().size(), 1);
}

void tellsFirstReason(Stage& stage) {
    const std::vector<std::pair<std::string KeptText::*, std::string>> steps = {
        {&KeptText::version, "version"},
        {&KeptText::analysisTypes, "analysisTypes"},
        {&KeptText::minScenceDuration, "minScenceDuration"},
        {&KeptText::scenceDetectionThreshold, "scenceDetectionThreshold"}};
    const KeptText wrong{R"("0")", R"("0")", "0", "0.0", R"([{"begin": 1}])"};
    for (std::size_t first = 0; first < steps.size(); ++first) {
        KeptText changed;
        KeptText missing;
        for (std::size_t i = first; i < steps.size(); ++i) {
            changed.*steps[i].first = wrong.*steps[i].first;
            missing.*steps[i].first = i == first ? "" : wrong.*steps[i].first;
        }
        expectRefused(stage, changed.text(), steps[first].second + " changed");
        expectRefused(stage, missing.text(), "No " + steps[first].second);
    }
}

void keepsOrderOfFile(Stage& stage) {
    stage.insert(photo("p.jpg"));
    insertKept(stage);
    stage.insert(photo("q.jpg"));
    stage.writeResultFile(
        KeptText{.result = R"([{"begin": 3}, {"begin": 1}, {"begin": 3}])"}.text());
    stage.component().start();
    const Records records = stage.results();
    expectEqual("the number of records", records.size(), 5);
    std::vector<std::int64_t> begins;
    for (const auto& record : records)
        begins.push_back(record.begin);
    expectEqual("the begins", begins, {0, 3, 1, 3, 0});
}

void refusesUnopenable(Stage& stage) {
    insertKept(stage);
    fs::create_directories(stage.resultFile().parent_path());
    if (!makeUnopenable(stage.resultFile())) skip("nothing can be made that does not open");
    stage.journal();
    stage.component().start();
    expectRestoringLog(stage, {"analysisCachePath open failed"});
    expectEqual("a file afterwards", fs::exists(stage.resultFile()), false);
    expectEqual("task 0 runs", stage.task(0).running(), true);
}

void restoresTwice(Stage& stage) {
    FakeMedia& material = insertKept(stage);
    expectEqual("insertMaterials()",
                stage.component().insertMaterials(materialList({&material}).get(), 1),
                KOR::statusOk);
    stage.writeResultFile(KeptText().text());
    stage.component().start();
    expectEqual("starts of tasks", host().startCount.load(), 0);
    expectEqual("the number of records", stage.results().size(), 2);
}

void takesOneReference(Stage& stage) {
    FakeMedia& material = insertKept(stage);
    stage.writeResultFile(KeptText{.result = "[{}, {}, {}]"}.text());
    const std::uint32_t before = material.refCount();
    stage.component().start();
    expectEqual("references on the material", material.refCount(), before + 3);
    stage.component().clearMaterials();
    expectEqual("references when all is cleared", material.refCount(), before - 1);
}

/// Whether a directory opens is for the platform to say, and so is the message.
void goesOnWithDirectory(Stage& stage) {
    insertKept(stage);
    fs::create_directories(stage.resultFile());
    stage.component().start();
    expectEqual("task 0 runs", stage.task(0).running(), true);
    expectEqual("lines about it", loggedBy(stage, "restoreMaterialAnalysisResult").size(), 2);
}

void goesOnWhereNothingIsDeleted(Stage& stage) {
    insertKept(stage);
    host().faults.removalsFail = true;
    stage.writeResultFile("broken");
    stage.component().start();
    expectRestoringLog(stage, {"cache result invalidate"});
    expectEqual("task 0 runs", stage.task(0).running(), true);
    expectEqual("the file that the host did not delete", stage.resultText(), "broken");
}

void asksHostWhatExists(Stage& stage) {
    insertKept(stage);
    host().faults.nothingExists = true;
    stage.writeResultFile(KeptText().text());
    stage.component().start();
    expectRestoringLog(stage, {"analysisCachePath not exists"});
    expectEqual("task 0 runs", stage.task(0).running(), true);
    expectEqual("the file", stage.resultText(), KeptText().text());
}

void joinsAsHost(Stage& stage) {
    insertKept(stage).spec.mediaCache += "///";
    stage.writeResultFile(KeptText().text());
    stage.component().start();
    expectRestoringLog(stage, {});
    expectEqual("the number of records", stage.results().size(), 1);
}

void refusesSilently(Stage& stage) {
    insertKept(stage);
    host().faults.loggerAbsent = true;
    stage.writeResultFile("broken");
    stage.component().start();
    expectEqual("a file afterwards", fs::exists(stage.resultFile()), false);
    expectEqual("task 0 runs", stage.task(0).running(), true);
}

void expectNeverRead(Stage& stage, const MediaSpec& spec) {
    MediaSpec kept = spec;
    stage.insert(kept.cacheIn(stage.directory()));
    stage.useKinds({4, 3});
    stage.writeResultFile("broken");
    stage.journal();
    stage.component().start();
    expectLines("the log of restoring", loggedBy(stage, "restoreMaterialAnalysisResult"), {});
    expectEqual("the file", stage.resultText(), "broken");
}

void expectThreshold(Stage& stage, double current, const std::string& kept, bool isTaken) {
    stage.setThreshold(current);
    const std::string text = KeptText{.scenceDetectionThreshold = kept}.text();
    if (isTaken) {
        expectEqual("the number of records", expectTaken(stage, text).size(), 1);
    } else {
        expectRefused(stage, text, "scenceDetectionThreshold changed");
    }
}

}  // namespace

const std::vector<ComponentCheck> restoreChecks = {
    {"restore.starts-no-task",
     "A video with a result file of the same settings gets its records from there, and no task is "
     "started for it.",
     startsNoTask},
    {"restore.own-file-gives-same-records",
     "A second run takes the file of the first, gives the same records and leaves it as it is.",
     takesOwnFile},
    {"restore.missing-file-is-logged", "Where there is no file, that is logged behind its path.",
     [](Stage& stage) {
         insertKept(stage);
         stage.component().start();
         expectRestoringLog(stage, {"analysisCachePath not exists"});
         expectEqual("task 0 runs", stage.task(0).running(), true);
     }},
    {"restore.empty-cache-path-is-logged",
     "Where there is no place for a file, that alone is logged, and the video is analysed.",
     [](Stage& stage) {
         insertKept(stage).spec.mediaCache = "";
         stage.component().start();
         expectLines("the log", loggedBy(stage, "restoreMaterialAnalysisResult"),
                     {"mediaCache path is empty"});
         expectEqual("task 0 runs", stage.task(0).running(), true);
     }},
    {"restore.no-source-is-silent", "A material without a source is analysed, and nothing is said.",
     [](Stage& stage) {
         insertKept(stage).spec.isSourceMedia = false;
         stage.writeResultFile(KeptText().text());
         stage.component().start();
         expectLines("the log", loggedBy(stage, "restoreMaterialAnalysisResult"), {});
         expectEqual("task 0 runs", stage.task(0).running(), true);
     }},
    {"restore.unopenable-file-is-deleted", "A file that does not open is logged and deleted.",
     refusesUnopenable},
    {"restore.no-version", "A file without a version is refused as \"No version\".",
     [](Stage& stage) { expectRefused(stage, KeptText{.version = ""}.text(), "No version"); }},
    {"restore.other-version",
     "A file of any other version is refused as \"version changed\", one with a blank behind too.",
     [](Stage& stage) {
         for (const char* const version : {R"("1.0.0.2")", R"("1.0.0.1 ")", R"("")", R"("1.0.0")"})
             expectRefused(stage, KeptText{.version = version}.text(), "version changed");
     }},
    {"restore.no-kinds", "A file without its kinds is refused as \"No analysisTypes\".",
     [](Stage& stage) {
         expectRefused(stage, KeptText{.analysisTypes = ""}.text(), "No analysisTypes");
     }},
    {"restore.other-kinds",
     "A file of other kinds, or of the same in another order or with blanks, is refused as "
     "\"analysisTypes changed\".",
     [](Stage& stage) {
         for (const char* const kinds : {R"("3,4")", R"("4")", R"("4, 3")", R"("4,3,1")", R"("")"})
             expectRefused(stage, KeptText{.analysisTypes = kinds}.text(), "analysisTypes changed");
     }},
    {"restore.no-minimum", "A file without its minimum is refused as \"No minScenceDuration\".",
     [](Stage& stage) {
         expectRefused(stage, KeptText{.minScenceDuration = ""}.text(), "No minScenceDuration");
     }},
    {"restore.other-minimum",
     "A file of another minimum, a fractional one too, is refused as \"minScenceDuration "
     "changed\".",
     [](Stage& stage) {
         for (const char* const minimum : {"3", "-2", "2.5", "4294967298"})
             expectRefused(stage, KeptText{.minScenceDuration = minimum}.text(),
                           "minScenceDuration changed");
     }},
    {"restore.no-threshold",
     "A file without its threshold is refused as \"No scenceDetectionThreshold\".",
     [](Stage& stage) {
         expectRefused(stage, KeptText{.scenceDetectionThreshold = ""}.text(),
                       "No scenceDetectionThreshold");
     }},
    {"restore.other-threshold",
     "A file whose threshold is more than 0.001 off, to either side, is refused as "
     "\"scenceDetectionThreshold changed\".",
     [](Stage& stage) {
         expectThreshold(stage, 3.0011, "3.0", false);
         expectThreshold(stage, 3.0, "3.0011", false);
         expectThreshold(stage, -3.0, "3", false);
     }},
    {"restore.near-threshold", "A threshold that is less than 0.001 off is taken.",
     [](Stage& stage) {
         expectThreshold(stage, 3.001, "3.0", true);
         expectThreshold(stage, 3.0, "3.0009", true);
         expectThreshold(stage, 3.0, "3", true);
     }},
    {"restore.threshold-off-by-a-thousandth", "A threshold that is exactly 0.001 off is taken.",
     [](Stage& stage) {
         expectThreshold(stage, 0.0, "0.001", true);
         expectThreshold(stage, 0.001, "0.0", true);
         expectThreshold(stage, 0.0, "0.0010000000000000002", false);
     }},
    {"restore.threshold-that-is-no-number", "A current threshold that is not a number takes any.",
     [](Stage& stage) {
         expectThreshold(stage, std::numeric_limits<double>::quiet_NaN(), "77.0", true);
     }},
    {"restore.first-reason-counts",
     "A file that is wrong in several ways is refused for the first: version, kinds, minimum, "
     "threshold.",
     tellsFirstReason},
    {"restore.refused-file-is-replaced", "The analysis that follows a refusal writes a new file.",
     replacesRefusedFile},
    {"restore.records-are-appended-in-order",
     "Restored records stand behind those of earlier materials, in the file's order, repeated ones "
     "too.",
     keepsOrderOfFile},
    {"restore.same-material-twice",
     "A material that stands twice in the list gets its records twice.", restoresTwice},
    {"restore.records-take-a-reference",
     "Each restored record takes one reference on its material and gives it back.",
     takesOneReference},
    {"restore.directory-in-its-place",
     "Where a directory stands in the file's place, the video is analysed.", goesOnWithDirectory},
    {"restore.undeletable-file-does-not-matter",
     "A refused file is deleted by the host alone; where that cannot, the video is analysed all "
     "the "
     "same.",
     goesOnWhereNothingIsDeleted},
    {"restore.existence-is-the-hosts", "Whether there is a file is what the host says.",
     asksHostWhatExists},
    {"restore.path-is-joined-by-host",
     "The path of the file is joined by the host, whatever the cache's own ends with.",
     joinsAsHost},
    {"restore.deletes-without-logger", "A file is refused and deleted without a logger too.",
     refusesSilently},
    {"restore.photo-reads-no-file", "A photo's cache is not looked at.",
     [](Stage& stage) { expectNeverRead(stage, photo("a.jpg")); }},
    {"restore.short-video-reads-no-file",
     "The cache of a video too short to analyse is not looked "
     "at.",
     [](Stage& stage) { expectNeverRead(stage, video("a.mp4", 2 * second)); }},
};

}  // namespace validator
