#include "reference_host/tasks/FootageAnalysis.h"

#include "host_kit/Workers.h"
#include "reference_host/ReferenceHost.h"
#include "reference_host/tasks/analysePictures.h"
#include "reference_host/tasks/analyseScenes.h"

namespace reference_host {

host_kit::AnalysisResults FootageAnalysis::analyse(const host_kit::AnalysisRequest& request,
                                                   const std::stop_token& stop,
                                                   host_kit::ProgressMeter& progress) {
    const AnalysisRequest wanted{request, footage_};
    host_kit::AnalysisResults results;
    if (wanted.wantsScenes || wanted.wantsKeyFrames) {
        analyseScenes(wanted, stop, progress, results);
    }
    if (wanted.wantsFaces || wanted.wantsEntropy || wanted.wantsBlur) {
        analysePictures(wanted, stop, progress, results);
    }
    return results;
}

void endAllRuns() {
    host_kit::Workers::instance().endAll();
}

}  // namespace reference_host
