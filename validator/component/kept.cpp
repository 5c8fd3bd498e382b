#include "validator/component/kept.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace validator {
namespace {

void startWith(Stage& stage, const std::string& text) {
    if (host().taskCount() == 0) insertKept(stage);
    std::filesystem::create_directories(stage.resultFile().parent_path());
    std::ofstream(stage.resultFile(), std::ios::binary) << text;
    stage.journal();
    stage.component().start();
}

/// Texts of many bytes say no more than their beginning.
std::string beginningOf(const std::string& text) {
    return shown(text.substr(0, 500));
}

}  // namespace

std::string KeptText::text() const {
    std::string members;
    const auto add = [&members](const char* key, const std::string& value) {
        if (value.empty()) return;
        if (!members.empty()) members += ", ";
        members += "\"" + std::string(key) + "\": " + value;
    };
    add("version", version);
    add("analysisTypes", analysisTypes);
    add("minScenceDuration", minScenceDuration);
    add("scenceDetectionThreshold", scenceDetectionThreshold);
    add("result", result);
    return "{" + members + "}";
}

std::string keptRecord(const std::string& members) {
    return KeptText{.result = "[{" + members + "}]"}.text();
}

FakeMedia& insertKept(Stage& stage) {
    MediaSpec spec = video("clip.mp4", 100 * second).keyFrames({7});
    FakeMedia& material = stage.insert(spec.cacheIn(stage.directory()));
    stage.useKinds({4, 3});
    return material;
}

Records expectTaken(Stage& stage, const std::string& text) {
    startWith(stage, text);
    expectSame("the running task, with the file " + beginningOf(text), host().runningTask(),
               nullptr);
    expectRestoringLog(stage, {});
    std::ifstream file(stage.resultFile(), std::ios::binary);
    const std::string left{std::istreambuf_iterator<char>(file), {}};
    expect(left == text, "the file afterwards", beginningOf(text), beginningOf(left));
    return stage.results();
}

void expectRefused(Stage& stage, const std::string& text, const std::string& message) {
    startWith(stage, text);
    const std::string with = ", with the file " + beginningOf(text);
    expectSame("the running task" + with, host().runningTask(), &stage.task(0));
    expectEqual("a file afterwards" + with, std::filesystem::exists(stage.resultFile()), false);
    expectRestoringLog(stage, {message});
    expectEqual("the number of records" + with, stage.results().size(), 0);
    stage.component().stop();
}

void expectReadBack(double found, double written) {
    if (found == written) return;
    if (std::abs(found - written) > std::abs(written) * 1e-15)
        expectEqual("the score", found, written);
    if (!warnings().empty()) return;  // one of many is enough
    warn("a score is read as " + shown(found) + " that was written as " + shown(written));
}

void expectRestoringLog(Stage& stage, const Lines& messages) {
    Lines expected = {"read analysisCachePath: <dir>/analysis/result.json"};
    expected.insert(expected.end(), messages.begin(), messages.end());
    expectLines("the log of restoring", loggedBy(stage, "restoreMaterialAnalysisResult"), expected);
}

}  // namespace validator
