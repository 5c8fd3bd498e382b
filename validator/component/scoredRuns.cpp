#include "validator/component/scoredRuns.h"

namespace validator {

void countInTicks(Stage& stage) {
    stage.setParam("minNeedAnalysisDuartion", 0);
    stage.setParam("minScenceDuration", 0);
}

Records recordsOf(Stage& stage, const MediaSpec& spec, const std::vector<std::int32_t>& kinds) {
    stage.insert(spec);
    stage.useKinds(kinds);
    stage.journal();
    stage.runToEnd();
    return stage.results();
}

KOR::MaterialAnalysisResult only(const Records& records) {
    expectEqual("the number of records", records.size(), 1);
    return records.front();
}

double durationScoreOf(std::int64_t begin, std::int64_t end, std::int64_t materialDuration) {
    return (static_cast<double>(end - begin + 1) * 0.3) / static_cast<double>(materialDuration);
}

double entropyScoreOf(double entropy) {
    return (entropy * 0.125) * 0.1;
}

Lines loggedBy(Stage& stage, const std::string& function) {
    const std::string beginning = "log " + function + ": \"";
    Lines texts = stage.journal(beginning);
    for (std::string& text : texts)
        text = text.substr(beginning.size(), text.size() - beginning.size() - 1);
    return texts;
}

}  // namespace validator
