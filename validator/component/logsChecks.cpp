#include <locale>

#include "fake_host/faces.h"
#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

/// A run with every kind over a video, with lines from every function that logs.
void runEverything(Stage& stage) {
    MediaSpec spec = video("clip.mp4", 100 * second).cacheIn(stage.directory());
    spec.scenes({{0, 50 * second}}).keyFrames({7}).entropies({{7, 4.0}});
    recordsOf(stage, spec.faceFrames({frameWith({})}), {4, 3, 1, 5, 2, 6, 7});
    expect(host().logLines().size() > 20, "the log", "a line for each step",
           shown(host().logLines().size()) + " lines");
}

/// Fails unless `isRight` holds for every line of such a run.
template <typename Value>
void expectOfAllLines(Stage& stage, const char* what, Value LogLine::*member, Value value) {
    runEverything(stage);
    for (const LogLine& line : host().logLines())
        expectEqual(what + (" of " + shown(line.text)), line.*member, value);
}

/// The lines of a run that begin like this, without the names of their functions.
Lines linesBeginning(Stage& stage, const std::string& beginning) {
    Lines texts = stage.logTexts();
    std::erase_if(texts, [&](const std::string& text) { return !text.starts_with(beginning); });
    return texts;
}

/// Runs without lines have to come to what runs with lines come to.
void expectWorkWithoutLines(Stage& stage) {
    MediaSpec spec = video("clip.mp4", 100 * second).scenes({{0, 50 * second}}).keyFrames({7});
    const auto record = only(recordsOf(stage, spec.cacheIn(stage.directory()), {4, 3}));
    expectEqual("the record's position", record.posOfMaxScore, 7);
    expectEqual("the number of lines", host().logLines().size(), 0);
    expectEqual("a result file", std::filesystem::exists(stage.resultFile()), true);
    expectLines("complaints of the host", host().complaints(), {});
}

/// Writes 1234567.5 as 1.234.567,5.
class CommaDecimals final : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

void ignoresLocale(Stage& stage) {
    std::locale::global(std::locale(std::locale::classic(), new CommaDecimals));
    MediaSpec spec =
        video("clip.mp4", 1000000000).keyFrames({123456789}).cacheIn(stage.directory());
    recordsOf(stage, spec.entropies({{123456789, 12345.6}}), {6, 5});
    const std::string text = stage.resultText();
    std::locale::global(std::locale::classic());
    expectLines("the scores' log", loggedBy(stage, "entropyCalculateFinishedInternal"),
                {"entropy score result: {", "[123456789:154.320000]", "}\\n"});
    expectEqual("the line of the record", lastOf("lines", stage.logTexts()),
                "fileName: clip.mp4 begin: 0 end: 1000000000 keyframe pos: 123456789 "
                "socre: 154.62 face rect: {0000} \n");
    expect(text.find("\"end\": 1000000000,") != std::string::npos, "the result file",
           "an end of 1000000000", text);
}

void tellsScenesWithKeyFrames(Stage& stage) {
    countInTicks(stage);
    MediaSpec spec = video("a b.mp4", 1000).scenes({{-20, 100}, {100, 200}, {300, 400}});
    recordsOf(stage, spec.keyFrames({-10, 7, 99, 300}), {6});
    expectLines("the log", loggedBy(stage, "scenceAndKeyframeDetectFinished"),
                {"----Finish Scence Detect and keyframe extract---素材idx: 0\\n",
                 "fileName detect result: a b.mp4",
                 "scence [-20,100) key frame position: { -10,7,99 } \\n ",
                 "scence [100,200) key frame position: {  } \\n ",
                 "scence [300,400) key frame position: { 300 } \\n "});
}

void endsWithRecords(Stage& stage) {
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(photo("p.jpg").faceFrames({frameWith({{0.1234567, 0.00001, 1e-7, 1234567.0}})}));
    stage.insert(video("v.mp4", 100 * second).keyFrames({7}));
    stage.useKinds({4, 1, 3, 5});
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.runToEnd();
    const Lines lines = stage.journal();
    expectLines("the end of the run", lastLines(lines, 4),
                {"log finishedAllAnalysis: \"auto trim result: \\n\"",
                 "log finishedAllAnalysis: \"fileName: p.jpg begin: 0 end: 1 keyframe pos: 0 "
                 "socre: 1 face rect: {0.1234571e-051e-071.23457e+06} \\n\"",
                 "log finishedAllAnalysis: \"fileName: v.mp4 begin: 0 end: 1000000000 keyframe "
                 "pos: 7 socre: 0.3 face rect: {0000} \\n\"",
                 "listener: event 2, 100"});
    stage.component().removeCallBack(&listener);
}

/// What single and combined tasks that give no analysis interface leave in the log.
void finishesWithoutTask(Stage& stage) {
    stage.insert(video("clip.mp4", 100 * second));
    stage.useKinds({6, 7, 4});
    stage.component().start();
    for (const std::size_t task : {0U, 1U}) {
        stage.task(task).hideAnalysisInterface();
        stage.task(task).finish();
    }
    expectLines(
        "the log", linesBeginning(stage, "----Finish"),
        {"----Finish Scence Detect---素材idx: 0\n", "----Finish Keyframe Extract---素材idx: 0\n",
         "----Finish Scence Detect and keyframe extract---素材idx: 0\n",
         "----Finish Face Detect---素材idx: 0\n", "----Finish Entropy Value---素材idx: 0\n",
         "----Finish face Detect and entropy calculate---素材idx: 0\n"});
    expectLines("the scores' log", linesBeginning(stage, "duration score result"), {});
}

void namesEachFunction(Stage& stage) {
    runEverything(stage);
    Lines functions;
    for (const LogLine& line : host().logLines()) {
        if (functions.empty() || functions.back() != line.function) {
            functions.push_back(line.function);
        }
    }
    Lines expected = {"restoreMaterialAnalysisResult",
                      "startScenceDetect",
                      "scenceDetectFinished",
                      "startKeyFrameDetect",
                      "keyFrameDetectFinishedInternal",
                      "keyFrameDetectFinished",
                      "startFaceDetect",
                      "faceDetectFinishedInternal",
                      "faceDetectFinished",
                      "startEntropyCalculate",
                      "entropyCalculateFinishedInternal",
                      "entropyCalculateFinished",
                      "startBlurDetect",
                      "startScenceAndKeyframeDetect",
                      "scenceDetectFinished",
                      "keyFrameDetectFinishedInternal",
                      "keyFrameDetectFinished",
                      "scenceAndKeyframeDetectFinished",
                      "startFaceAndEntropyAnalysis",
                      "faceDetectFinishedInternal",
                      "faceDetectFinished",
                      "entropyCalculateFinishedInternal",
                      "entropyCalculateFinished",
                      "faceAndEntropyAnalysisFinished",
                      "saveMaterialAnalysisResult",
                      "finishedAllAnalysis"};
    for (std::string& name : expected)
        name.insert(0, "KOR::KorMaterialAnalysis::");
    expectLines("the functions", functions, expected);
}

}  // namespace

const std::vector<ComponentCheck> logsChecks = {
    {"logs.severity-is-4", "Every line has severity 4.",
     [](Stage& stage) { expectOfAllLines(stage, "the severity", &LogLine::severity, 4U); }},
    {"logs.severity-4-is-tested", "The logger is asked for severity 4 and for no other.",
     [](Stage& stage) {
         runEverything(stage);
         for (const std::string& complaint : host().complaints())
             expect(complaint != "another severity was tested", "the severity asked for", "4",
                    "another one");
     }},
    {"logs.source-unit",
     "Every line comes from modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.",
     [](Stage& stage) {
         const std::string unit = "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis";
         expectOfAllLines(stage, "the source unit", &LogLine::sourceUnit, unit);
     }},
    {"logs.tag-is-empty", "Every line has an empty tag.",
     [](Stage& stage) { expectOfAllLines(stage, "the tag", &LogLine::tag, std::string()); }},
    {"logs.line-number-is-given", "Every line has a line number above 0.",
     [](Stage& stage) {
         runEverything(stage);
         for (const LogLine& line : host().logLines())
             expect(line.sourceLine > 0, "the line number of " + shown(line.text), "above 0",
                    shown(line.sourceLine));
     }},
    {"logs.functions-are-qualified", "Every line has the qualified name of its own function.",
     namesEachFunction},
    {"logs.written-in-one-piece", "Every line is written once, as a whole, and then closed.",
     [](Stage& stage) {
         runEverything(stage);
         expectLines("complaints of the host", host().complaints(), {});
         expectEqual("open lines", host().live.logStreams.load(), 0);
     }},
    {"logs.starts-of-all-kinds", "Each kind's start is logged with its text, byte for byte.",
     [](Stage& stage) {
         runEverything(stage);
         expectLines(
             "the log", linesBeginning(stage, "----Start"),
             {"----Start Scence Detect:---素材idx---0\n",
              "----Start Keyframe Extract---素材idx: 0\n", "----Start Face Detect---素材idx: 0\n",
              "----Start Entropy Value---素材idx: 0\n", "----Start Blur Detect---素材idx: 0\n",
              "----Start Scence Detect and keyframe extrackt:---素材idx---0\n",
              "----Start Face detect and Entropy Value---素材idx: 0\n"});
     }},
    {"logs.finishes-of-all-kinds",
     "Each kind's finish but that of blur is logged with its text, byte for byte, single analyses "
     "before combined ones.",
     [](Stage& stage) {
         runEverything(stage);
         expectLines(
             "the log", linesBeginning(stage, "----Finish"),
             {"----Finish Scence Detect---素材idx: 0\n",
              "----Finish Keyframe Extract---素材idx: 0\n", "----Finish Face Detect---素材idx: 0\n",
              "----Finish Entropy Value---素材idx: 0\n", "----Finish Scence Detect---素材idx: 0\n",
              "----Finish Keyframe Extract---素材idx: 0\n",
              "----Finish Scence Detect and keyframe extract---素材idx: 0\n",
              "----Finish Face Detect---素材idx: 0\n", "----Finish Entropy Value---素材idx: 0\n",
              "----Finish face Detect and entropy calculate---素材idx: 0\n"});
     }},
    {"logs.finishes-without-task",
     "A task that gives no analysis interface has its finish lines all the same, and no scores.",
     finishesWithoutTask},
    {"logs.index-is-that-of-material", "Start and finish lines end in the index of the material.",
     [](Stage& stage) {
         stage.insert(photo("a.jpg"));
         recordsOf(stage, video("b.mp4", 100 * second), {4, 3});
         expectLines(
             "the log", linesBeginning(stage, "----"),
             {"----Start Scence Detect:---素材idx---1\n", "----Finish Scence Detect---素材idx: 1\n",
              "----Start Keyframe Extract---素材idx: 1\n",
              "----Finish Keyframe Extract---素材idx: 1\n"});
     }},
    {"logs.photo-has-no-entropy-line",
     "A photo's task of kind 7 logs its faces' finish and the combined one alone.",
     [](Stage& stage) {
         stage.setParam("photoNeedAnalysis", 1);
         recordsOf(stage, photo("a.jpg"), {4, 7});
         expectLines("the log", linesBeginning(stage, "----Finish"),
                     {"----Finish Face Detect---素材idx: 0\n",
                      "----Finish face Detect and entropy calculate---素材idx: 0\n"});
     }},
    {"logs.scenes-with-keyframes",
     "A finished task of kind 6 logs the file's name and each scene with its keyframes.",
     tellsScenesWithKeyFrames},
    {"logs.end-of-run",
     "A run ends with a line for each record, doubles with six significant digits, and then tells "
     "its listeners.",
     endsWithRecords},
    {"logs.end-of-empty-run", "A run without records logs \"auto trim result: \" alone.",
     [](Stage& stage) {
         RecordingListener listener;
         stage.component().addCallBack(&listener);
         stage.runToEnd();
         expectLines(
             "the run", stage.journal(),
             {"log finishedAllAnalysis: \"auto trim result: \\n\"", "listener: event 2, 100"});
         stage.component().removeCallBack(&listener);
     }},
    {"logs.file-names-stay-as-they-are", "A file's name is logged byte for byte.",
     [](Stage& stage) {
         recordsOf(stage, photo("素材 %s%n {\"\\\"}\t\xFF.jpg"), {4, 3});
         expectEqual(
             "the last line", lastOf("lines", stage.logTexts()),
             "fileName: 素材 %s%n {\"\\\"}\t\xFF.jpg begin: 0 end: 1 keyframe pos: 0 socre: "
             "1 face rect: {0000} \n");
     }},
    {"logs.absent-logger-changes-nothing", "Without a logger everything but the lines is the same.",
     [](Stage& stage) {
         host().faults.loggerAbsent = true;
         expectWorkWithoutLines(stage);
     }},
    {"logs.disabled-severity-changes-nothing",
     "With severity 4 disabled no line is opened, and everything else is the same.",
     [](Stage& stage) {
         host().faults.severityDisabled = true;
         expectWorkWithoutLines(stage);
     }},
    {"logs.refused-lines-change-nothing",
     "Where the logger opens no line, everything but the lines is the same.",
     [](Stage& stage) {
         host().faults.logStreamsFail = true;
         expectWorkWithoutLines(stage);
     }},
    {"logs.locale-does-not-matter", "Numbers are logged and written alike in any locale.",
     ignoresLocale},
};

}  // namespace validator
