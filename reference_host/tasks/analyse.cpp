#include "reference_host/tasks/analyse.h"

#include "reference_host/media/MediaError.h"
#include "reference_host/tasks/analysePictures.h"
#include "reference_host/tasks/analyseScenes.h"

namespace reference_host {

AnalysisResults analyse(const AnalysisRequest& request, const std::stop_token& stop,
                        ProgressMeter& progress) {
    if (!request.footage) throw media::MediaError("the task has no source that it can read");
    AnalysisResults results;
    if (request.wantsScenes || request.wantsKeyFrames) {
        analyseScenes(request, stop, progress, results);
    }
    if (request.wantsFaces || request.wantsEntropy || request.wantsBlur) {
        analysePictures(request, stop, progress, results);
    }
    return results;
}

}  // namespace reference_host
