#include "autotrim/Outcome.h"

#include "host/status.h"

namespace autotrim {
namespace {

std::string whyFailed(const Traces& traces, RunEnd end) {
    if (!traces.failure.empty()) return traces.failure;
    if (traces.passed || (traces.hasRecords && !traces.awaitsFaces)) return {};
    return end == RunEnd::interrupted ? interruptedReason : "the analysis stopped before its end";
}

}  // namespace

bool isLong(std::int64_t durationTicks, std::int32_t minLengthSeconds) {
    return durationTicks > minLengthSeconds * KOR::ticksPerSecond;
}

void decideOutcome(FileReport& report, const Traces& traces, RunEnd end,
                   std::int32_t minLengthSeconds) {
    report.error = whyFailed(traces, end);
    if (!report.error.empty()) {
        report.outcome = Outcome::failed;
        report.results.clear();
    } else if (traces.analysed) {
        report.outcome = Outcome::analysed;
    } else {
        const bool isLongVideo = report.type == MaterialType::video &&
                                 isLong(report.duration.value_or(0), minLengthSeconds);
        report.outcome = isLongVideo ? Outcome::restored : Outcome::byDefault;
    }
}

}  // namespace autotrim
