#include "reference_host/tasks/analyseScenes.h"

#include <string>

#include "reference_host/media/MediaError.h"
#include "reference_host/media/PictureReader.h"
#include "reference_host/scenes/KeyFrameChoice.h"
#include "reference_host/scenes/SceneAnalysis.h"

namespace reference_host {
namespace {

using Record = std::shared_ptr<const scenes::FootageRecord>;

/// Scenes need no picture of a stretch in which nothing happens; this only bounds what is lost by a
/// wrong guess.
constexpr std::int64_t longestGapForScenes = 10 * KOR::ticksPerSecond;

/// Every keyframe is chosen from a stretch of seconds, in which there have to be pictures.
constexpr std::int64_t longestGapForKeyFrames = KOR::ticksPerSecond * 5 / 4;

void noteDamage(Footage& footage, const media::Damage& damage) {
    if (damage.damaged == 0) return;
    footage.noteWarning("damaged: " + std::to_string(damage.damaged) + " of " +
                        std::to_string(damage.all) + " frames could not be decoded whole");
}

/// Returns how long a stretch may be of which no picture is looked at.
std::int64_t longestGapFor(const AnalysisRequest& request) {
    return request.wantsKeyFrames ? longestGapForKeyFrames : longestGapForScenes;
}

/// Null when it was stopped.
Record decode(const AnalysisRequest& request, double threshold, const std::stop_token& stop,
              ProgressMeter& progress) {
    Footage& footage = *request.footage;
    const media::PictureReader::Plan plan{
        .threshold = threshold, .longestGapTicks = longestGapFor(request), .threads = 0};
    media::PictureReader reader(footage.file(), footage.facts(), plan, stop, [&](double share) {
        progress.report(static_cast<std::int32_t>(share * 100));
    });
    scenes::SceneAnalysis analysis(threshold);
    scenes::PictureFeatures picture;
    std::int64_t pictures = 0;
    while (reader.next(picture)) {
        analysis.add(picture);
        ++pictures;
    }
    if (stop.stop_requested()) return nullptr;
    if (pictures == 0) throw media::MediaError("no picture could be decoded");
    noteDamage(footage, reader.damage());
    return std::make_shared<const scenes::FootageRecord>(
        analysis.finish(footage.facts().durationTicks));
}

/// Scenes depend on the parameters, so they always take a decode of their own; keyframes in known
/// scenes need one only where none has been made yet.
Record recordFor(const AnalysisRequest& request, const std::stop_token& stop,
                 ProgressMeter& progress) {
    Footage& footage = *request.footage;
    Record record = request.wantsScenes ? nullptr : footage.record();
    if (record) return record;
    const KOR::SceneParameters& parameters = request.sceneParameters;
    record = decode(request, parameters.threshold / parameters.sensitivity, stop, progress);
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
