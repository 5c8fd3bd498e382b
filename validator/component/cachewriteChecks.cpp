#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>

#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

namespace fs = std::filesystem;

/// A video of one scene and one keyframe, and a place for its result file.
MediaSpec clip(const Stage& stage) {
    MediaSpec spec = video("clip.mp4", 1000).scenes({{0, 100}}).keyFrames({50});
    return spec.cacheIn(stage.directory());
}

/// The file of a run in ticks with the kinds 4 and 3 and no records, but for what is given.
std::string fileText(const std::string& kinds, const std::string& minimum,
                     const std::string& threshold, const std::string& result = "[]") {
    return "{\n    \"version\": \"1.0.0.1\",\n    \"analysisTypes\": \"" + kinds +
           "\",\n    \"minScenceDuration\": " + minimum +
           ",\n    \"scenceDetectionThreshold\": " + threshold + ",\n    \"result\": " + result +
           "\n}";
}

std::string recordText(const std::string& score, const std::string& begin, const std::string& end,
                       const std::string& best) {
    return "        {\n            \"score\": " + score + ",\n            \"begin\": " + begin +
           ",\n            \"end\": " + end + ",\n            \"posOfMaxScore\": " + best +
           ",\n            \"faceRectOfPhoto\": \"0.000000,0.000000,0.000000,0.000000\"\n        }";
}

/// Starts a run over `spec` with the kinds 4 and 3, and lets it come to its last task.
void runToLastTask(Stage& stage, const MediaSpec& spec) {
    countInTicks(stage);
    stage.insert(spec);
    stage.useKinds({4, 3});
    stage.component().start();
    stage.task(0).finish();
}

void expectSavingLog(Stage& stage, const Lines& lines) {
    expectLines("the log", loggedBy(stage, "saveMaterialAnalysisResult"), lines);
}

void writesBytes(Stage& stage) {
    countInTicks(stage);
    MediaSpec spec = clip(stage).scenes({{0, 99}, {200, 299}}).keyFrames({50, 250});
    recordsOf(stage, spec, {4, 3});
    expectEqual("the file", stage.resultText(),
                fileText("4,3", "0", "3.0",
                         "[\n" + recordText("0.03", "0", "99", "50") + ",\n" +
                             recordText("0.03", "200", "299", "250") + "\n    ]"));
}

void writesShortestDoubles(Stage& stage) {
    stage.insert(video("clip.mp4", 100 * second).cacheIn(stage.directory()));
    stage.useKinds({4, 3});
    const std::vector<std::pair<double, std::string>> texts = {
        {3, "3.0"},        {0.1, "0.1"},       {-2.5, "-2.5"},
        {0, "0.0"},        {100, "100.0"},     {0.001, "0.001"},
        {1e21, "1e21"},    {1.5e-7, "1.5e-7"}, {123456.789, "123456.789"},
        {5e-324, "5e-324"}};
    for (const auto& [threshold, text] : texts) {
        stage.setThreshold(threshold);
        fs::remove(stage.resultFile());
        stage.runToEnd();
        expectEqual("the file", stage.resultText(), fileText("4,3", "2", text));
    }
}

void writesExtremeIntegers(Stage& stage) {
    using Limits = std::numeric_limits<std::int64_t>;
    countInTicks(stage);
    stage.setParam("minScenceDuration", std::numeric_limits<std::int32_t>::min());
    MediaSpec spec = clip(stage).scenes({{Limits::min(), -2}, {1, Limits::max()}});
    recordsOf(stage, spec.keyFrames({Limits::min(), Limits::max() - 1}), {4, 3});
    const std::string text = stage.resultText();
    for (const char* const line :
         {"\"minScenceDuration\": -2147483648,", "\"begin\": -9223372036854775808,", "\"end\": -2,",
          "\"posOfMaxScore\": -9223372036854775808,", "\"end\": 9223372036854775807,",
          "\"posOfMaxScore\": 9223372036854775806,"})
        expect(text.find(line) != std::string::npos, "the file", line, text);
}

/// Blanks between a key and a value that is missing are not settled.
std::string withoutBlanks(std::string text) {
    std::erase(text, ' ');
    return text;
}

void leavesOutWhatIsNoNumber(Stage& stage) {
    countInTicks(stage);
    stage.insert(clip(stage).entropies({{50, std::numeric_limits<double>::quiet_NaN()}}));
    stage.setThreshold(std::numeric_limits<double>::infinity());
    stage.useKinds({6, 5});
    stage.runToEnd();
    expectEqual("the file", withoutBlanks(stage.resultText()),
                withoutBlanks(fileText("6,5", "0", "",
                                       "[\n" + recordText("", "0", "100", "50") + "\n    ]")));
}

void overwritesAll(Stage& stage) {
    runToLastTask(stage, clip(stage).keyFrames({}));
    stage.writeResultFile(std::string(100000, 'x'));
    stage.task(1).finish();
    expectEqual("the file", stage.resultText(), fileText("4,3", "0", "3.0"));
}

void logsBeforeItOpens(Stage& stage) {
    runToLastTask(stage, clip(stage));
    std::vector<bool> filesThere;
    host().onLogLine = [&](const LogLine& line) {
        if (line.text.starts_with("write ")) filesThere.push_back(fs::exists(stage.resultFile()));
    };
    stage.journal();
    stage.task(1).finish();
    host().onLogLine = nullptr;
    expectSavingLog(stage, {"write analysisCachePath: <dir>/analysis/result.json"});
    expectEqual("files there when it is logged", filesThere, std::vector<bool>{false});
}

void leavesNothingBeside(Stage& stage) {
    countInTicks(stage);
    recordsOf(stage, clip(stage), {4, 3});
    Lines names;
    for (const auto& entry : fs::recursive_directory_iterator(stage.directory()))
        names.push_back(entry.path().filename().string());
    expectLines("what stands in the cache, from the outside in", names,
                {"analysis", "result.json"});
}

void asksHostForDirectory(Stage& stage) {
    fs::create_directories(stage.directory() / "analysis");
    runToLastTask(stage, clip(stage));
    host().faults.nothingExists = true;
    stage.task(1).finish();
    expectEqual("directories asked for", host().directoriesMade.load(), 1);
}

void joinsAsHost(Stage& stage) {
    MediaSpec spec = clip(stage);
    spec.mediaCache += "///";
    runToLastTask(stage, spec);
    stage.journal();
    stage.task(1).finish();
    expectSavingLog(stage, {"write analysisCachePath: <dir>/analysis/result.json"});
}

void survivesUnwritable(Stage& stage) {
    runToLastTask(stage, clip(stage));
    fs::create_directories(stage.resultFile());
    stage.journal();
    stage.task(1).finish();
    expectSavingLog(stage, {"write analysisCachePath: <dir>/analysis/result.json",
                            "analysisCachePath open failed"});
    expectEqual("the number of records", stage.results().size(), 1);
    expectEqual("a directory in its place", fs::is_directory(stage.resultFile()), true);
}

void survivesMissingDirectory(Stage& stage) {
    runToLastTask(stage, clip(stage));
    host().faults.directoriesFail = true;
    stage.journal();
    stage.task(1).finish();
    expectEqual("directories asked for", host().directoriesMade.load(), 1);
    expectSavingLog(stage, {"write analysisCachePath: <dir>/analysis/result.json",
                            "analysisCachePath open failed"});
    expectEqual("the number of records", stage.results().size(), 1);
}

void asksForPathWhenWriting(Stage& stage) {
    countInTicks(stage);
    FakeMedia& material = stage.insert(clip(stage));
    stage.useKinds({4, 3});
    stage.component().start();
    material.spec.mediaCache = "";
    stage.task(0).finish();
    stage.journal();
    stage.task(1).finish();
    expectSavingLog(stage, {"mediaCache path is empty"});
    expectEqual("a result file", fs::exists(stage.resultFile()), false);
}

void writesLatestSettings(Stage& stage) {
    runToLastTask(stage, clip(stage).keyFrames({}));
    stage.setParam("minScenceDuration", 77);
    stage.setThreshold(0.5);
    stage.task(1).finish();
    expectEqual("the file", stage.resultText(), fileText("4,3", "77", "0.5"));
}

void takesUtf8Path(Stage& stage) {
    const fs::path directory = stage.directory() / fs::path(u8"素材 Größe");
    countInTicks(stage);
    recordsOf(stage, clip(stage).cacheIn(directory), {4, 3});
    expectEqual("a result file", fs::exists(directory / "analysis" / "result.json"), true);
    const int starts = host().startCount;
    stage.runToEnd();
    expectEqual("starts of tasks in the next run", host().startCount.load(), starts);
}

void keepsMaterialsApart(Stage& stage) {
    countInTicks(stage);
    for (const char* const name : {"a", "b"}) {
        MediaSpec spec = clip(stage).keyFrames({name[0]});
        stage.insert(spec.scenes({{0, 99}}).cacheIn(stage.directory() / name));
    }
    stage.useKinds({4, 3});
    stage.runToEnd();
    std::ifstream file(stage.directory() / "b" / "analysis" / "result.json");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    expectEqual(
        "the second file", text,
        fileText("4,3", "0", "3.0", "[\n" + recordText("0.03", "0", "99", "98") + "\n    ]"));
    expectEqual("the first file", fs::exists(stage.directory() / "a" / "analysis" / "result.json"),
                true);
}

}  // namespace

const std::vector<ComponentCheck> cachewriteChecks = {
    {"cachewrite.exact-bytes",
     "The result file has five members and each record five, in their order, four blanks for each "
     "level, and no line feed at its end.",
     writesBytes},
    {"cachewrite.path-is-logged",
     "Before it writes, the component logs the path, and nothing else.", logsBeforeItOpens},
    {"cachewrite.path-is-joined-by-host",
     "The path of the file is joined by the host, whatever the cache's own ends with.",
     joinsAsHost},
    {"cachewrite.leaves-nothing-beside", "Beside the file nothing is left in the cache.",
     leavesNothingBeside},
    {"cachewrite.existence-is-the-hosts",
     "Whether the directory is there is what the host says: where not, it is asked for.",
     asksHostForDirectory},
    {"cachewrite.path-is-utf-8",
     "The path of a material's cache is UTF-8, and so is that of its "
     "file, which the next run finds.",
     takesUtf8Path},
    {"cachewrite.directory-is-made", "Where the directory of the file is missing, it is made.",
     [](Stage& stage) {
         countInTicks(stage);
         recordsOf(stage, clip(stage).cacheIn(stage.directory() / "deep" / "down"), {4, 3});
         expectEqual("a result file",
                     fs::exists(stage.directory() / "deep/down/analysis/result.json"), true);
         expectEqual("directories asked for", host().directoriesMade.load(), 1);
     }},
    {"cachewrite.directory-is-not-made-anew", "A directory that is there is not asked for.",
     [](Stage& stage) {
         fs::create_directories(stage.directory() / "analysis");
         runToLastTask(stage, clip(stage));
         stage.task(1).finish();
         expectEqual("directories asked for", host().directoriesMade.load(), 0);
         expect(!stage.resultText().empty(), "the file", "a text", "none");
     }},
    {"cachewrite.no-records-is-empty-array",
     "A video without records gets a file whose result is \"[]\".",
     [](Stage& stage) {
         runToLastTask(stage, clip(stage).keyFrames({}));
         stage.task(1).finish();
         expectEqual("the file", stage.resultText(), fileText("4,3", "0", "3.0"));
     }},
    {"cachewrite.kinds-in-their-order",
     "The file lists the kinds in their order, without those that are none.",
     [](Stage& stage) {
         recordsOf(stage, video("clip.mp4", 100 * second).cacheIn(stage.directory()),
                   {5, 8, 4, 0, 3, 4});
         expectEqual("the file", stage.resultText(), fileText("5,4,3,4", "2", "3.0"));
     }},
    {"cachewrite.settings-as-they-stand",
     "The file has the parameters as they stand when it is written.", writesLatestSettings},
    {"cachewrite.doubles-are-shortest",
     "A threshold is written as the shortest text that reads back to it, a whole one with \".0\".",
     writesShortestDoubles},
    {"cachewrite.integers-to-their-limits", "Integers are written in full down to their limits.",
     writesExtremeIntegers},
    {"cachewrite.no-number-has-no-value",
     "A score or threshold that is not finite leaves its key without a value.",
     leavesOutWhatIsNoNumber},
    {"cachewrite.overwrites-all", "A longer file that is there is overwritten completely.",
     overwritesAll},
    {"cachewrite.unwritable-file-is-logged",
     "Where the file cannot be opened, that is logged, and the records stay.", survivesUnwritable},
    {"cachewrite.failing-directory-is-logged",
     "Where its directory cannot be made, the file's opening fails and is logged; the records "
     "stay.",
     survivesMissingDirectory},
    {"cachewrite.empty-cache-path-is-logged",
     "Whether there is a place for the file is asked anew when it is to be written, and logged "
     "where there is none.",
     asksForPathWhenWriting},
    {"cachewrite.no-source-is-silent",
     "For a material without a source nothing is said or written.",
     [](Stage& stage) {
         runToLastTask(stage, clip(stage).withoutSource());
         stage.journal();
         stage.task(1).finish();
         expectSavingLog(stage, {});
         expectEqual("a result file", fs::exists(stage.resultFile()), false);
     }},
    {"cachewrite.each-material-has-its-file", "Each video's file holds its own records alone.",
     keepsMaterialsApart},
    {"cachewrite.single-task-writes-none", "A run with a single kind writes no file.",
     [](Stage& stage) {
         countInTicks(stage);
         recordsOf(stage, clip(stage), {6});
         expectEqual("a result file", fs::exists(stage.resultFile()), false);
     }},
    {"cachewrite.default-records-are-not-written", "Photos and short videos get no file.",
     [](Stage& stage) {
         stage.insert(photo("a.jpg").cacheIn(stage.directory()));
         recordsOf(stage, video("b.mp4", 2 * second).cacheIn(stage.directory()), {4, 3});
         expectEqual("a result file", fs::exists(stage.resultFile()), false);
         expectSavingLog(stage, {});
     }},
};

}  // namespace validator
