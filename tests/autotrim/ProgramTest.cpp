#include <csignal>
#include <fstream>

#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/Process.h"
#include "tests/autotrim/ProgramReport.h"
#include "tests/autotrim/TemporaryDirectory.h"

namespace autotrim {
namespace {

using std::filesystem::path;

constexpr std::int64_t ticksPerFrame = 400000;

TEST(Program, TellsItsVersion) {
    const Ended ended = run({"--version"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.output, "autotrim " AUTOTRIM_VERSION "\n");
    EXPECT_EQ(ended.errors, "");
}

TEST(Program, ExitsWithTwoAfterWrongUse) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {}, {"--kinds", "3,4", "short.mp4"}, {"--threshold", "nan", "short.mp4"}}) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exitCode, exitWrongUse);
        EXPECT_EQ(ended.output, "");
        EXPECT_EQ(ended.errorLines().size(), 2U) << ended.errors;
    }
}

TEST(Program, PrintsATableForEachFile) {
    const Ended ended = run({"short.mp4", "photo.png"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.output,
              "short.mp4  00:00:01.000  (too short to analyse: kept whole)\n"
              "  scene  begin           end           best keyframe   score\n"
              "      1  00:00:00.000  - 00:00:01.000  00:00:00.500    1.000\n"
              "\n"
              "photo.png  (photo: kept whole)\n");
    EXPECT_EQ(ended.errors, "");
}

TEST(Program, WritesDefaultRecordsAsJson) {
    EXPECT_EQ(analysed({"photo.png", "short.mp4"}).dump(),
              R"([{"file":"photo.png","type":"photo","duration":1,"outcome":"default",)"
              R"("error":null,"results":[{"score":1.0,"begin":0,"end":1,"posOfMaxScore":0,)"
              R"("faceRectOfPhoto":[0.0,0.0,0.0,0.0],"faces":null}]},)"
              R"({"file":"short.mp4","type":"video","duration":10000000,"outcome":"default",)"
              R"("error":null,"results":[{"score":1.0,"begin":0,"end":10000000,)"
              R"("posOfMaxScore":5000000,"faceRectOfPhoto":[0.0,0.0,0.0,0.0],"faces":null}]}])");
}

TEST(Program, FindsCutsDissolveAndFade) {
    const Json materials = analysed({"--min-scene", "0", "scenes.mp4"});
    EXPECT_EQ(materials[0]["outcome"], "analysed");
    EXPECT_EQ(materials[0]["duration"], 375 * ticksPerFrame);
    const auto begins = beginsOf(materials[0]["results"]);
    ASSERT_EQ(begins.size(), 4U);
    EXPECT_EQ(begins[0], 0);
    EXPECT_EQ(begins[1], 75 * ticksPerFrame);
    EXPECT_GE(begins[2], 150 * ticksPerFrame);
    EXPECT_LE(begins[2], 175 * ticksPerFrame);
    EXPECT_GE(begins[3], 250 * ticksPerFrame);
    EXPECT_LE(begins[3], 300 * ticksPerFrame);
}

TEST(Program, CountsFacesWhereItLooksForThem) {
    const auto facesBy = [](const char* kinds) {
        std::vector<std::string> faces;
        const Json materials = analysed({"--kinds", kinds, "two.mp4"});
        for (const Json& record : materials[0]["results"])
            faces.push_back(record["faces"].dump());
        return faces;
    };
    using Faces = std::vector<std::string>;
    EXPECT_EQ(facesBy("6,7"), (Faces{"0", "0"}));
    EXPECT_EQ(facesBy("4,3,1"), (Faces{"0", "0"}));
    EXPECT_EQ(facesBy("6,5"), (Faces{"null", "null"}));
    EXPECT_EQ(facesBy("4,3"), (Faces{"null", "null"}));
}

TEST(Program, LooksForFacesInPhotosWhenAsked) {
    const std::string record =
        R"({"score":1.0,"begin":0,"end":1,"posOfMaxScore":0,"faceRectOfPhoto":[0.0,0.0,0.0,0.0],)";
    for (const char* kinds : {"6,7", "4,3,1", "6,1,2", "2,6,1,5"}) {
        const Json photo = analysed({"--photos", "--kinds", kinds, "photo.png"})[0];
        EXPECT_EQ(photo["outcome"], "analysed") << kinds;
        EXPECT_EQ(photo["results"].dump(), "[" + record + R"("faces":0}])") << kinds;
    }
    const Json photo = analysed({"--photos", "--kinds", "6,5", "photo.png"})[0];
    EXPECT_EQ(photo["outcome"], "default");
    EXPECT_EQ(photo["results"].dump(), "[" + record + R"("faces":null}])");
}

TEST(Program, TellsThatAPhotoHasNoFace) {
    const Ended ended = run({"--photos", "photo.png"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.output,
              "photo.png  (analysed)\n"
              "  no face\n");
    EXPECT_EQ(ended.errors, "");
}

TEST(Program, GivesRecordsWhereBlurComesLast) {
    const Json records = analysed({"--kinds", "6,2", "two.mp4"})[0]["results"];
    EXPECT_EQ(records.size(), 2U);
    EXPECT_EQ(records, analysed({"--kinds", "2,6", "two.mp4"})[0]["results"]);
}

TEST(Program, CachesWhatItPrints) {
    const TemporaryDirectory cache;
    const Json materials = analysed({"--cache", cache.path().string(), "two.mp4"});
    const Json cached = onlyCachedResult(cache.path());
    ASSERT_TRUE(cached.is_object());
    EXPECT_EQ(withoutFaces(cached["result"]), withoutFaces(materials[0]["results"]));
    EXPECT_GE(cached["result"].size(), 1U);
    EXPECT_EQ(cached["analysisTypes"], "6,7");
}

TEST(Program, HandsItsParametersOver) {
    const TemporaryDirectory cache;
    analysed({"--cache", cache.path().string(), "--kinds", "2,6", "--min-scene", "3",
              "--min-length", "0", "--threshold", "2.5", "short.mp4"});
    const Json cached = onlyCachedResult(cache.path());
    ASSERT_TRUE(cached.is_object());
    EXPECT_EQ(cached["analysisTypes"], "2,6");
    EXPECT_EQ(cached["minScenceDuration"], 3);
    EXPECT_EQ(cached["scenceDetectionThreshold"], 2.5);
}

TEST(Program, CachesBelowTheUsersCacheDirectory) {
    Process process({"two.mp4"});
    const Ended ended = process.wait();
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_TRUE(onlyCachedResult(process.home() / ".cache" / "autotrim").is_object());
}

TEST(Program, WarnsOnceOfACacheThatCannotBeWritten) {
    const TemporaryDirectory directory;
    const path noDirectory = directory.path() / "file";
    std::ofstream(noDirectory) << "in the way";
    const Ended ended = run({"--cache", noDirectory.string(), "two.mp4", "two.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, "autotrim: " + noDirectory.string() +
                                ": warning: results could not be kept in this directory\n");
}

TEST(Program, NamesEachBadFileOnOneLine) {
    const TemporaryDirectory directory;
    const auto made = [&](const char* name, const std::string& content) {
        const path file = directory.path() / name;
        std::ofstream(file) << content;
        return file.string();
    };
    const std::vector<std::string> bad = {"missing.mp4",
                                          made("empty.mp4", ""),
                                          made("text.mp4", "just a few words\n"),
                                          directory.path().string(),
                                          "truncated.mp4",
                                          "sound.wav",
                                          "/dev/zero"};
    std::vector<std::string> arguments = {"--json", "-", "short.mp4"};
    arguments.insert(arguments.end(), bad.begin(), bad.end());
    arguments.push_back("photo.png");

    const Ended ended = run(arguments);
    EXPECT_EQ(ended.exitCode, exitSomeFailed);
    const std::vector<std::string> lines = ended.errorLines();
    const Json materials = materialsOf(ended);
    ASSERT_EQ(lines.size(), bad.size()) << ended.errors;
    ASSERT_EQ(materials.size(), bad.size() + 2);
    EXPECT_EQ(materials.front()["outcome"], "default");
    EXPECT_EQ(materials.back()["outcome"], "default");
    for (std::size_t i = 0; i < bad.size(); ++i) {
        const Json& entry = materials[i + 1];
        EXPECT_EQ(entry["file"], bad[i]);
        EXPECT_EQ(entry["outcome"], "failed");
        EXPECT_TRUE(entry["type"].is_null());
        EXPECT_TRUE(entry["duration"].is_null());
        EXPECT_TRUE(entry["results"].empty());
        const auto reason = entry["error"].get<std::string>();
        EXPECT_FALSE(reason.empty());
        EXPECT_EQ(lines[i], "autotrim: " + bad[i] + ": " + reason);
    }
}

TEST(Program, NamesAnEmptyName) {
    EXPECT_EQ(run({""}).errors, "autotrim: \"\": there is no such file\n");
}

TEST(Program, RefusesAFileThatIsNoFaceModel) {
    const TemporaryDirectory directory;
    const path report = directory.path() / "report.json";
    for (const std::string model : {"missing.onnx", "photo.png", "/", "/dev/null"}) {
        const Ended ended =
            run({"--face-model", model, "--json", report.string(), "short.mp4", "missing.mp4"});
        EXPECT_EQ(ended.exitCode, exitWrongUse);
        EXPECT_EQ(ended.output, "");
        ASSERT_EQ(ended.errorLines().size(), 1U) << ended.errors;
        EXPECT_NE(ended.errors.find(model), std::string::npos) << ended.errors;
        EXPECT_FALSE(std::filesystem::exists(report));
    }
}

TEST(Program, ExitsWithOneWhenEveryFileFailed) {
    const Ended ended = run({"missing.mp4"});
    EXPECT_EQ(ended.exitCode, exitSomeFailed);
    EXPECT_EQ(ended.output, "");
}

TEST(Program, WarnsOnceOfADamagedFile) {
    const Ended ended = run({"--json", "-", "damaged.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(materialsOf(ended)[0]["outcome"], "analysed");
    ASSERT_EQ(ended.errorLines().size(), 1U) << ended.errors;
    EXPECT_EQ(ended.errors.rfind("autotrim: damaged.mp4: warning: ", 0), 0U) << ended.errors;
}

TEST(Program, TakesNamesLiterally) {
    const TemporaryDirectory directory;
    std::vector<std::string> arguments = {"--json", "-"};
    for (const char* name : {"[a,b]", "a:b.mp4", "%03d.mp4", "-x", "\x1B[31m\n", "\xFF.mp4"}) {
        const path file = directory.path() / name;
        std::filesystem::copy_file(path(AUTOTRIM_CLIPS) / "short.mp4", file);
        arguments.push_back(file.string());
    }
    const Ended ended = run(arguments);
    EXPECT_EQ(ended.exitCode, exitAllDone) << ended.errors;
    const Json materials = materialsOf(ended);
    EXPECT_EQ(materials[0]["file"], arguments[2]);
    EXPECT_EQ(materials[4]["file"], arguments[6]);
    EXPECT_EQ(materials[5]["file"], (directory.path() / "\xEF\xBF\xBD.mp4").string());
}

TEST(Program, ShowsOddNamesHarmlessly) {
    const Ended ended = run({"\x1B[31m\n\xFF"});
    EXPECT_EQ(ended.errorLines().size(), 1U);
    EXPECT_EQ(ended.errors.rfind("autotrim: \\x1B[31m\\x0A\\xFF: ", 0), 0U) << ended.errors;
}

TEST(Program, WritesJsonToAFileBesideTheTables) {
    const TemporaryDirectory directory;
    const path file = directory.path() / "report.json";
    const Ended ended = run({"--json", file.string(), "short.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.output.rfind("short.mp4  ", 0), 0U);
    EXPECT_EQ(contentOf(file), run({"--json", "-", "short.mp4"}).output);
}

TEST(Program, ExitsWithOneWhenJsonCannotBeWritten) {
    const Ended ended = run({"--json", "missing/report.json", "short.mp4"});
    EXPECT_EQ(ended.exitCode, exitSomeFailed);
    EXPECT_EQ(ended.errors,
              "autotrim: cannot write missing/report.json: No such file or directory\n");
    EXPECT_EQ(run({"--json", "/dev/full", "short.mp4"}).exitCode, exitSomeFailed);
}

TEST(Program, ExitsWithOneWhenOutputIsFull) {
    const Ended ended = Process({"short.mp4"}, ErrorsTo::pipe, "/dev/full").wait();
    EXPECT_EQ(ended.exitCode, exitSomeFailed);
    EXPECT_EQ(ended.errors,
              "autotrim: cannot write to the standard output: No space left on device\n");
}

TEST(Program, KeepsDiagnosticsOutOfJsonWithoutStandardError) {
    const TemporaryDirectory directory;
    const path file = directory.path() / "report.json";
    Process process({"--json", file.string(), "missing.mp4"}, ErrorsTo::nowhere);
    EXPECT_EQ(process.wait().exitCode, exitSomeFailed);
    EXPECT_EQ(contentOf(file), run({"--json", "-", "missing.mp4"}).output);
}

TEST(Program, NeverOverwritesAFileToBeAnalysed) {
    const TemporaryDirectory directory;
    const path file = directory.path() / "clip.mp4";
    std::filesystem::copy_file(path(AUTOTRIM_CLIPS) / "short.mp4", file);
    const std::string before = contentOf(file);
    for (const char* option : {"--json", "--log"}) {
        const std::string sameFile = (directory.path() / "." / "clip.mp4").string();
        EXPECT_EQ(run({option, sameFile, file.string()}).exitCode, exitWrongUse);
        EXPECT_EQ(contentOf(file), before);
    }
}

TEST(Program, NeverOverwritesAFaceModel) {
    const TemporaryDirectory directory;
    const std::string model = (directory.path() / "faces.onnx").string();
    std::ofstream(model) << "a model";
    for (const char* option : {"--json", "--log"}) {
        const Ended ended = run({"--face-model", model, option, model, "short.mp4"});
        EXPECT_EQ(ended.exitCode, exitWrongUse);
        EXPECT_EQ(ended.errors,
                  "autotrim: " + model + ": the file would be overwritten by this run\n");
        EXPECT_EQ(contentOf(model), "a model");
    }
}

TEST(Program, NeverOverwritesAFileBehindAnOptionWithoutValue) {
    const TemporaryDirectory directory;
    const path file = directory.path() / "clip.mp4";
    std::filesystem::copy_file(path(AUTOTRIM_CLIPS) / "short.mp4", file);
    const std::string before = contentOf(file);
    for (const char* option : {"--json=", "--log=", "--cache="}) {
        EXPECT_EQ(run({option, file.string(), "photo.png"}).exitCode, exitWrongUse);
        EXPECT_EQ(contentOf(file), before);
    }
}

TEST(Program, KeepsALogWithTheRunInIt) {
    const TemporaryDirectory directory;
    const path log = directory.path() / "run.log";
    const Ended ended = run({"--log", log.string(), "short.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, "");
    EXPECT_NE(contentOf(log).find("auto trim result: "), std::string::npos);
}

TEST(Program, ReportsProgressAsJsonLines) {
    const Ended ended = run({"--progress", "machine", "two.mp4", "short.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    int last = 0;
    const std::vector<std::string> lines = ended.errorLines();
    ASSERT_GE(lines.size(), 2U);
    for (const std::string& line : lines) {
        const Json object = Json::parse(line);
        EXPECT_EQ(object.size(), 2U);
        EXPECT_EQ(object["file"], "two.mp4");
        EXPECT_GE(object["percent"].get<int>(), last);
        last = object["percent"].get<int>();
    }
    EXPECT_EQ(last, 100);
}

TEST(Program, DrawsABarOnATerminalAndClearsIt) {
    Process process({"long.mp4"}, ErrorsTo::terminal);
    process.readErrorsUntil(" left  long.mp4\x1B[K");
    process.send(SIGINT);
    const Ended ended = process.wait();
    EXPECT_EQ(ended.exitCode, exitInterrupted);
    EXPECT_NE(ended.errors.find("\r["), std::string::npos) << ended.errors;
    EXPECT_NE(ended.errors.find("\r\x1B[Kautotrim: interrupted\r\n"), std::string::npos)
        << ended.errors;
}

TEST(Program, ShowsNoBarWhenNoneIsWanted) {
    EXPECT_EQ(Process({"--progress", "none", "short.mp4"}, ErrorsTo::terminal).wait().errors, "");
}

class InterruptedProgram : public testing::TestWithParam<int> {};

TEST_P(InterruptedProgram, KeepsWhatWasFinished) {
    const TemporaryDirectory cache;
    Process process({"--json", "-", "--progress", "machine", "--jobs", "1", "--cache",
                     cache.path().string(), "two.mp4", "long.mp4", "photo.png"});
    std::string line = process.readErrorLine();
    while (!line.empty() && Json::parse(line)["file"] != "long.mp4")
        line = process.readErrorLine();
    process.send(GetParam());

    const Ended ended = process.wait();
    EXPECT_EQ(ended.exitCode, exitInterrupted);
    EXPECT_EQ(ended.errorLines().back(), "autotrim: interrupted");
    const Json materials = materialsOf(ended);
    ASSERT_EQ(materials.size(), 3U);
    EXPECT_EQ(materials[0]["outcome"], "analysed");
    EXPECT_EQ(withoutFaces(onlyCachedResult(cache.path())["result"]),
              withoutFaces(materials[0]["results"]));
    for (const std::size_t unfinished : {1U, 2U}) {
        EXPECT_EQ(materials[unfinished]["outcome"], "failed");
        EXPECT_EQ(materials[unfinished]["error"], "interrupted");
        EXPECT_TRUE(materials[unfinished]["results"].empty());
    }
}

INSTANTIATE_TEST_SUITE_P(Program, InterruptedProgram, testing::Values(SIGINT, SIGTERM),
                         [](const testing::TestParamInfo<int>& signal) {
                             return signal.param == SIGINT ? "BySigint" : "BySigterm";
                         });

}  // namespace
}  // namespace autotrim
