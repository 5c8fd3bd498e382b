#pragma once

#include <string>

#include "validator/component/scoredRuns.h"

/// Result files that a component finds.
namespace validator {

/// A result file that a component with the kinds 4 and 3 and no parameters set takes as its own,
/// unless a check gives a member another value, as JSON. An empty text leaves the member out.
struct KeptText {
    std::string version = R"("1.0.0.1")";
    std::string analysisTypes = R"("4,3")";
    std::string minScenceDuration = "2";
    std::string scenceDetectionThreshold = "3.0";
    std::string result = R"([{"score": 0.5, "begin": 1, "end": 3, "posOfMaxScore": 2}])";

    std::string text() const;
};

/// The same file with one record that has these members.
std::string keptRecord(const std::string& members);

/// Adds a video whose cache is the stage's directory, and the kinds 4 and 3.
FakeMedia& insertKept(Stage& stage);

/// Starts a run over such a video, which has to take its records from a file with this text, start
/// no task and leave the file alone. Gives the records. May be called again.
Records expectTaken(Stage& stage, const std::string& text);

/// Starts a run over such a video, which has to refuse a file with this text, delete it and analyse
/// the video instead. The run is stopped then. May be called again.
void expectRefused(Stage& stage, const std::string& text, const std::string& message);

/// Fails unless `found` is `written`; readers whose numbers are off in the last digits get a
/// warning.
void expectReadBack(double found, double written);

/// Fails unless the last run has logged this of restoring, behind the path.
void expectRestoringLog(Stage& stage, const Lines& messages);

}  // namespace validator
