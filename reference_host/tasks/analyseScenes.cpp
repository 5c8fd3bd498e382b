#include "reference_host/tasks/analyseScenes.h"

#include <string>

#include "reference_host/media/MediaError.h"
#include "reference_host/media/PictureReader.h"
#include "reference_host/scenes/KeyFrameChoice.h"
#include "reference_host/scenes/SceneAnalysis.h"

namespace reference_host {
namespace {

using Record = std::shared_ptr<const scenes::FootageRecord>;

void noteDamage(Footage& footage, const media::PictureReader::Damage& damage) {
    if (damage.damaged == 0) return;
    footage.noteWarning("damaged: " + std::to_string(damage.damaged) + " of " +
                        std::to_string(damage.all) + " frames could not be decoded whole");
}

/// Null when it was stopped.
Record decode(Footage& footage, double threshold, const std::stop_token& stop,
              ProgressMeter& progress) {
    const std::int64_t duration = footage.facts().durationTicks;
    media::PictureReader reader(footage.file(), footage.facts(), stop);
    scenes::SceneAnalysis analysis(threshold);
    scenes::PictureSample picture;
    std::int64_t pictures = 0;
    while (reader.next(picture)) {
        analysis.add(picture);
        ++pictures;
        progress.report(static_cast<std::int32_t>(picture.positionTicks * 100 / duration));
    }
    if (stop.stop_requested()) return nullptr;
    if (pictures == 0) throw media::MediaError("no picture could be decoded");
    noteDamage(footage, reader.damage());
    return std::make_shared<const scenes::FootageRecord>(analysis.finish(duration));
}

/// Scenes depend on the parameters, so they always take a decode of their own; keyframes in known
/// scenes need one only where none has been made yet.
Record recordFor(const AnalysisRequest& request, const std::stop_token& stop,
                 ProgressMeter& progress) {
    Footage& footage = *request.footage;
    Record record = request.wantsScenes ? nullptr : footage.record();
    if (record) return record;
    const KOR::SceneParameters& parameters = request.sceneParameters;
    record = decode(footage, parameters.threshold / parameters.sensitivity, stop, progress);
    if (record) footage.keepRecord(record);
    return record;
}

std::vector<KOR::TickRange> rangesFor(const AnalysisRequest& request,
                                      const scenes::FootageRecord& record) {
    if (request.wantsScenes) return record.scenes;
    if (!request.sceneRanges.empty()) return request.sceneRanges;
    return {{0, record.durationTicks}};
}

}  // namespace

void analyseScenes(const AnalysisRequest& request, const std::stop_token& stop,
                   ProgressMeter& progress, AnalysisResults& results) {
    const Record record = recordFor(request, stop, progress);
    if (!record) return;
    if (request.wantsScenes) results.scenes = record->scenes;
    if (request.wantsKeyFrames) {
        results.keyFramePositionsTicks = scenes::chooseKeyFrames(
            *record, rangesFor(request, *record), request.keyFrameParameters);
    }
}

}  // namespace reference_host
