#include "reference_host/tasks/analyseScenes.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "reference_host/media/MediaError.h"
#include "reference_host/media/PictureReader.h"
#include "reference_host/scenes/KeyFrameChoice.h"
#include "reference_host/scenes/SceneAnalysis.h"
#include "reference_host/tasks/PictureShelf.h"

namespace reference_host {
namespace {

using Record = std::shared_ptr<const scenes::FootageRecord>;

/// How long a stretch may be of which no picture is looked at: keyframes may be looked for later,
/// of which there is one for each few seconds.
constexpr std::int64_t longestGapForScenes = 4 * KOR::ticksPerSecond;

/// The same where keyframes are looked for at once, so that there are pictures in the middle of
/// what they stand for. A shot is often one group of pictures: of a long one the first part is
/// looked at.
constexpr std::int64_t shortGapForKeyFrames = KOR::ticksPerSecond * 5 / 4;
constexpr std::int64_t longestGapForKeyFrames = 2 * KOR::ticksPerSecond;
constexpr double partForKeyFrames = 0.6;

/// A view that is seen again after less than this was interrupted by a flash, not by a scene.
constexpr std::int64_t briefestScene = KOR::ticksPerSecond * 5 / 4;

/// What is seen for less than this between two equal pictures is a flash.
constexpr std::int64_t briefestView = KOR::ticksPerSecond / 5;

/// Keyframes are chosen from so many pictures a second at most.
constexpr std::int64_t shortestKept = KOR::ticksPerSecond / 2;

void noteDamage(Footage& footage, const media::Damage& damage) {
    if (damage.damaged == 0) return;
    footage.noteWarning("damaged: " + std::to_string(damage.damaged) + " of " +
                        std::to_string(damage.all) + " frames could not be decoded whole");
}

media::PictureReader::Plan planFor(const AnalysisRequest& request, double threshold) {
    media::PictureReader::Plan plan;
    plan.threshold = threshold;
    plan.gap = {longestGapForScenes, longestGapForScenes, 0, briefestScene, briefestView};
    if (request.wantsKeyFrames) {
        plan.gap = {shortGapForKeyFrames, longestGapForKeyFrames, partForKeyFrames, briefestScene};
        plan.shortestKeptTicks = shortestKept;
    }
    return plan;
}

/// Takes in which pictures were kept: into the record all of them, since what is chosen must not
/// depend on how much memory others have left.
void keepPictures(const std::shared_ptr<Footage>& footage,
                  std::vector<media::PictureReader::Kept> kept, scenes::FootageRecord& record) {
    Footage::Pictures pictures;
    auto frame = record.frames.begin();
    for (media::PictureReader::Kept& one : kept) {
        frame = std::lower_bound(frame, record.frames.end(), one.positionTicks,
                                 [](const scenes::FrameRecord& each, std::int64_t position) {
                                     return each.positionTicks < position;
                                 });
        if (frame == record.frames.end()) break;
        frame->isKept = frame->positionTicks == one.positionTicks;
        if (one.picture) pictures.emplace(one.positionTicks, std::move(one.picture));
    }
    PictureShelf::instance().put(footage, std::move(pictures));
}

/// Null when it was stopped.
Record decode(const AnalysisRequest& request, double threshold, const std::stop_token& stop,
              host_kit::ProgressMeter& progress) {
    Footage& footage = *request.footage;
    const PictureShelf::Use use;
    media::PictureReader reader(
        footage.file(), footage.facts(), planFor(request, threshold), stop,
        [&](double share) { progress.report(static_cast<std::int32_t>(share * 100)); });
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
    scenes::FootageRecord record = analysis.finish(footage.facts().durationTicks);
    keepPictures(request.footage, reader.takeKept(), record);
    return std::make_shared<const scenes::FootageRecord>(std::move(record));
}

/// Scenes depend on the parameters, so they always take a decode of their own; keyframes in known
/// scenes need one only where none has been made yet.
Record recordFor(const AnalysisRequest& request, const std::stop_token& stop,
                 host_kit::ProgressMeter& progress) {
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
                   host_kit::ProgressMeter& progress, host_kit::AnalysisResults& results) {
    const Record record = recordFor(request, stop, progress);
    if (!record) return;
    if (request.wantsScenes) results.scenes = record->scenes;
    if (request.wantsKeyFrames) {
        results.keyFramePositionsTicks = scenes::chooseKeyFrames(
            *record, rangesFor(request, *record), request.keyFrameParameters);
    }
}

}  // namespace reference_host
