// What the model takes in of finished tasks, and the result files.

#include <algorithm>
#include <cmath>

#include "tests/component/ContractModel.h"
#include "tests/component/ContractModelValues.h"

namespace fake_host {

using KOR::Status;
using KOR::statusFailed;
using KOR::statusOk;

/// None without a list; an element that the task has lost is nothing.
template <typename Result>
ContractModel::Found<Result> ContractModel::fetch(Task& task, std::int32_t type,
                                                  const std::vector<Result> MediaSpec::*results) {
    const bool hasList = makes(Product::owningList);
    note(static_cast<std::size_t>(&task - tasks.data()),
         "getResultList(" + std::to_string(type) + ", 0, " + (hasList ? "list" : "null") + ", 0)");
    if (!hasList) return std::nullopt;
    const bool computes = std::count(task.types.begin(), task.types.end(), type) != 0;
    if (task.failing.count("getResultList") != 0 || !task.source || !computes) return {{}};
    if (faults.failingAppends.count(Product::owningList) != 0) return {{}};
    std::vector<std::optional<Result>> elements;
    for (const Result& result : media[*task.source].*results) {
        const bool lost = task.lostElements.count(elements.size()) != 0;
        elements.push_back(lost ? std::nullopt : std::optional(result));
    }
    return elements;
}

Status ContractModel::scenesFinished(Task* task) {
    if (task != nullptr) {
        scenes_.clear();
        const auto found = fetch(*task, 1, &MediaSpec::sceneResults);
        for (const auto& scene : found.value_or(std::vector<std::optional<KOR::TickRange>>())) {
            if (!scene) continue;
            if ((scene->end - scene->begin) / 10000000 >= minScenceDuration) {
                scenes_.push_back({scene->begin, scene->end});
            }
        }
        if (scenes_.empty()) scenes_.push_back({0, current().durationTicks});
    }
    logFinish("scenceDetectFinished", "----Finish Scence Detect---素材idx: ");
    return task == nullptr ? statusFailed : statusOk;
}

Status ContractModel::keyFramesFinished(Task* task) {
    if (task != nullptr) walkKeyFrames(*task);
    logFinish("keyFrameDetectFinished", "----Finish Keyframe Extract---素材idx: ");
    return task == nullptr ? statusFailed : statusOk;
}

/// A list that the host has given once serves all scenes: it would be the same one again.
void ContractModel::walkKeyFrames(Task& task) {
    const std::string function = "keyFrameDetectFinishedInternal";
    keyFrames_.clear();
    log(function, "duration score result: {");
    Found<std::int64_t> found;
    std::size_t cursor = 0;
    for (std::size_t s = 0; s < scenes_.size(); ++s) {
        const auto [begin, end] = scenes_[s];
        std::vector<KeyFrame> inScene;
        if (!found) found = fetch(task, 9, &MediaSpec::keyFrameResults);
        while (found && cursor < found->size()) {
            const std::optional<std::int64_t> pos = (*found)[cursor];
            if (pos && *pos >= begin && *pos >= end) break;
            if (pos && *pos >= begin) inScene.push_back({s, 0.0, *pos});
            ++cursor;
        }
        if (!inScene.empty()) {
            const double score = (static_cast<double>(end - begin + 1) * 0.3) /
                                 static_cast<double>(durationOf(current()));
            for (KeyFrame& keyFrame : inScene)
                keyFrame.score += score;
            log(function, "[" + std::to_string(s) + ":" + fixedSix(inScene[0].score) + "]");
        }
        keyFrames_.push_back(inScene);
    }
    log(function, "}\n");
}

Status ContractModel::bothFinished(Task* task) {
    const std::string function = "scenceAndKeyframeDetectFinished";
    Status status = scenesFinished(task);
    if (keyFramesFinished(task) == statusFailed) status = statusFailed;
    logFinish(function, "----Finish Scence Detect and keyframe extract---素材idx: ");
    log(function, "fileName detect result: " + current().fileName);
    for (std::size_t s = 0; s < scenes_.size(); ++s) {
        std::string positions;
        if (s < keyFrames_.size()) {
            for (const KeyFrame& keyFrame : keyFrames_[s])
                positions += (positions.empty() ? "" : ",") + std::to_string(keyFrame.pos);
        }
        log(function, "scence [" + std::to_string(scenes_[s].begin) + "," +
                          std::to_string(scenes_[s].end) + ") key frame position: { " + positions +
                          " } \n ");
    }
    return status;
}

Status ContractModel::facesFinished(Task* task) {
    if (task != nullptr) {
        const auto found = fetch(*task, 3, &MediaSpec::faceResults);
        if (!isStill(current())) {
            scoreFaces(found);
        } else if (found && !found->empty() && found->front() && found->front()->faceCount > 0 &&
                   !records.empty()) {
            records.back().face = found->front()->faceRects[0];
        }
    }
    logFinish("faceDetectFinished", "----Finish Face Detect---素材idx: ");
    return task == nullptr ? statusFailed : statusOk;
}

void ContractModel::scoreFaces(const Found<KOR::FaceDetectFrame>& found) {
    const std::string function = "faceDetectFinishedInternal";
    log(function, "face score result: {");
    for (auto& scene : keyFrames_) {
        for (std::size_t j = 0; found && j < found->size() && j < scene.size(); ++j) {
            if (!(*found)[j]) continue;
            const double score = faceScoreOf(*(*found)[j]);
            log(function, "[" + std::to_string(scene[j].pos) + ":" + fixedSix(score) + "]");
            scene[j].score += score;
        }
    }
    log(function, "}\n");
}

Status ContractModel::entropyFinished(Task* task) {
    if (task != nullptr) scoreEntropy(*task);
    logFinish("entropyCalculateFinished", "----Finish Entropy Value---素材idx: ");
    return task == nullptr ? statusFailed : statusOk;
}

void ContractModel::scoreEntropy(Task& task) {
    const std::string function = "entropyCalculateFinishedInternal";
    log(function, "entropy score result: {");
    for (auto& scene : keyFrames_) {
        const auto found = fetch(task, 8, &MediaSpec::entropyResults);
        for (std::size_t j = 0; found && j < found->size() && j < scene.size(); ++j) {
            if (!(*found)[j]) continue;
            const double score = ((*found)[j]->entropy * 0.125) * 0.1;
            log(function, "[" + std::to_string((*found)[j]->pos) + ":" + fixedSix(score) + "]");
            scene[j].score += score;
        }
    }
    log(function, "}\n");
}

void ContractModel::rank() {
    if (keyFrames_.empty()) return;
    best_.clear();
    for (std::size_t s = 0; s < scenes_.size() && s < keyFrames_.size(); ++s) {
        std::vector<KeyFrame>& scene = keyFrames_[s];
        std::stable_sort(scene.begin(), scene.end(),
                         [](const auto& a, const auto& b) { return a.score > b.score; });
        if (!scene.empty()) scene.erase(scene.begin() + 1, scene.end());
        best_.insert(best_.end(), scene.begin(), scene.end());
    }
    std::stable_sort(best_.begin(), best_.end(),
                     [](const auto& a, const auto& b) { return a.pos < b.pos; });
}

void ContractModel::buildRecords() {
    std::vector<Record> ofMaterial;
    for (const KeyFrame& best : best_) {
        if (best.scene >= scenes_.size()) continue;
        const Range& scene = scenes_[best.scene];
        ofMaterial.push_back({best.score, scene.begin, scene.end, best.pos, currentMedia(), {}});
    }
    records.insert(records.end(), ofMaterial.begin(), ofMaterial.end());
    save(ofMaterial);
}

void ContractModel::addDefaultRecord() {
    const std::int64_t end = durationOf(current());
    const auto middle = static_cast<std::int64_t>(static_cast<double>(end) * 0.5);
    records.push_back({1.0, 0, end, middle, currentMedia(), {}});
}

void ContractModel::finishAll() {
    log("finishedAllAnalysis", "auto trim result: \n");
    for (const Record& record : records) {
        const KOR::KorRect& face = record.face;
        log("finishedAllAnalysis",
            "fileName: " + media[record.media].fileName +
                " begin: " + std::to_string(record.begin) + " end: " + std::to_string(record.end) +
                " keyframe pos: " + std::to_string(record.posOfMaxScore) +
                " socre: " + general(record.score) + " face rect: {" + general(face.x) +
                general(face.y) + general(face.width) + general(face.height) + "} \n");
    }
    notify(2, "100");
}

std::string ContractModel::kindsText() const {
    std::string text;
    for (const std::int32_t kind : kinds)
        text += (text.empty() ? "" : ",") + std::to_string(kind);
    return text;
}

void ContractModel::save(const std::vector<Record>& ofMaterial) {
    const std::string function = "saveMaterialAnalysisResult";
    if (!current().isSourceMedia || !current().hasSource) return;
    const std::string& cache = current().mediaCache;
    if (cache.empty()) {
        log(function, "mediaCache path is empty");
        return;
    }
    Place& place = places[cache];
    if (!place.hasFileInstead && !faults.directoriesFail) place.hasDirectory = true;
    log(function, "write analysisCachePath: " + cache + "/analysis/result.json");
    if (!place.hasDirectory || place.fileIsDirectory) {
        log(function, "analysisCachePath open failed");
        return;
    }
    const bool parses = std::isfinite(threshold) &&
                        std::all_of(ofMaterial.begin(), ofMaterial.end(),
                                    [](const auto& record) { return std::isfinite(record.score); });
    place.file =
        ResultFile{parses, "1.0.0.1", kindsText(), minScenceDuration, threshold, ofMaterial};
}

bool ContractModel::restore() {
    const std::string function = "restoreMaterialAnalysisResult";
    if (!current().isSourceMedia || !current().hasSource) return false;
    const std::string& cache = current().mediaCache;
    if (cache.empty()) {
        log(function, "mediaCache path is empty");
        return false;
    }
    log(function, "read analysisCachePath: " + cache + "/analysis/result.json");
    Place& place = places[cache];
    if (!place.file && !place.fileIsDirectory) {
        log(function, "analysisCachePath not exists");
        return false;
    }
    const char* const why =
        place.fileIsDirectory ? "analysisCachePath open failed" : rejection(*place.file);
    if (why != nullptr) {
        log(function, why);
        if (!faults.removalsFail) place.file.reset();
        return false;
    }
    for (Record record : place.file->records.value_or(std::vector<Record>())) {
        KOR::KorRect& face = record.face;
        for (double* const value : {&face.x, &face.y, &face.width, &face.height})
            *value = std::trunc(*value) + 0.0;
        record.media = currentMedia();
        records.push_back(record);
    }
    return true;
}

const char* ContractModel::rejection(const ResultFile& file) const {
    if (!file.parses) return "cache result invalidate";
    if (!file.version) return "No version";
    if (*file.version != "1.0.0.1") return "version changed";
    if (!file.kinds) return "No analysisTypes";
    if (*file.kinds != kindsText()) return "analysisTypes changed";
    if (!file.minScenceDuration) return "No minScenceDuration";
    if (*file.minScenceDuration != minScenceDuration) return "minScenceDuration changed";
    if (!file.threshold) return "No scenceDetectionThreshold";
    if (std::abs(*file.threshold - threshold) > 0.001) return "scenceDetectionThreshold changed";
    return nullptr;
}

}  // namespace fake_host
