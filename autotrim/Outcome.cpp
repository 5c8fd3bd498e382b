#include "autotrim/Outcome.h"

#include "host/status.h"

namespace autotrim {
namespace {

std::string whyFailed(const Traces& traces, RunEnd end) {
    if (!traces.failure.empty()) return traces.failure;
    if (traces.passed || (traces.hasRecords && !traces.awaitsFaces)) return {};
    return end == RunEnd::interrupted ? interruptedReason : "the analysis stopped before its end";
}

bool isLongVideo(const FileReport& report, std::int32_t minLengthSeconds) {
    return report.type == MaterialType::video &&
           report.duration > minLengthSeconds * KOR::ticksPerSecond;
}

}  // namespace

void decideOutcome(FileReport& report, const Traces& traces, RunEnd end,
                   std::int32_t minLengthSeconds) {
    report.error = whyFailed(traces, end);
    if (!report.error.empty()) {
        report.outcome = Outcome::failed;
        report.results.clear();
    } else if (traces.analysed) {
        report.outcome = Outcome::analysed;
    } else {
        report.outcome =
            isLongVideo(report, minLengthSeconds) ? Outcome::restored : Outcome::byDefault;
    }
}

}  // namespace autotrim
