#pragma once

#include <cstdint>
#include <vector>

#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"

namespace KOR {

/// Reaches single steps of the component and its working state, which the public interface hides.
struct ComponentProbe {
    explicit ComponentProbe(IKorMaterialAnalysis& analysis)
        : component(static_cast<KorMaterialAnalysis&>(analysis)) {}

    using Task = IBsMediaAnalysisTask;

    Status startFaceDetect(Task* task) { return component.startFaceDetect(task); }
    Status startBlurDetect(Task* task) { return component.startBlurDetect(task); }
    Status startKeyFrameDetect(Task* task) { return component.startKeyFrameDetect(task); }
    Status startScenceDetect(Task* task) { return component.startScenceDetect(task); }
    Status startEntropyCalculate(Task* task) { return component.startEntropyCalculate(task); }
    Status startScenceAndKeyframeDetect(Task* task) {
        return component.startScenceAndKeyframeDetect(task);
    }
    Status startFaceAndEntropyAnalysis(Task* task) {
        return component.startFaceAndEntropyAnalysis(task);
    }

    Status scenceDetectFinished(Task* task) { return component.scenceDetectFinished(task); }
    Status keyFrameDetectFinished(Task* task) { return component.keyFrameDetectFinished(task); }
    Status keyFrameDetectFinishedInternal(Task* task) {
        return component.keyFrameDetectFinishedInternal(task);
    }
    Status scenceAndKeyframeDetectFinished(Task* task) {
        return component.scenceAndKeyframeDetectFinished(task);
    }
    Status faceDetectFinished(Task* task) { return component.faceDetectFinished(task); }
    Status faceDetectFinishedInternal(Task* task) {
        return component.faceDetectFinishedInternal(task);
    }
    Status entropyCalculateFinished(Task* task) { return component.entropyCalculateFinished(task); }
    Status entropyCalculateFinishedInternal(Task* task) {
        return component.entropyCalculateFinishedInternal(task);
    }
    Status faceAndEntropyAnalysisFinished(Task* task) {
        return component.faceAndEntropyAnalysisFinished(task);
    }

    Status onTaskFinished() { return component.onTaskFinished(); }

    Status rankScenceScores() { return component.rankScenceScores(); }
    Status buildAnalysisResults() { return component.buildAnalysisResults(); }
    Status addDefaultResult(std::int32_t isPhoto) { return component.addDefaultResult(isPhoto); }
    Status finishedAllAnalysis() { return component.finishedAllAnalysis(); }
    bool saveMaterialAnalysisResult(IDmBaseMedia* media,
                                    const std::vector<const MaterialAnalysisResult*>& results) {
        return component.saveMaterialAnalysisResult(media, results);
    }

    bool restoreMaterialAnalysisResult(IDmBaseMedia* media) {
        return component.restoreMaterialAnalysisResult(media);
    }

    std::int32_t overallProgressAt(std::int32_t taskPercent) {
        return component.overallProgressAt(taskPercent);
    }
    Status onTaskEvent(std::uint32_t category, std::uint32_t event, void* payload) {
        return component.onTaskEvent(nullptr, category, event, payload);
    }

    std::vector<IDmBaseMedia*> materials() const {
        std::vector<IDmBaseMedia*> objects;
        for (const auto& material : component.materials)
            objects.push_back(material.get());
        return objects;
    }
    std::size_t taskCount() const { return component.tasks.size(); }

    /// The records by value; the component keeps its own.
    std::vector<MaterialAnalysisResult> results() const {
        std::vector<MaterialAnalysisResult> records;
        for (const auto& record : component.analysisResults)
            records.push_back(*record);
        return records;
    }

    std::size_t resultCount() const { return component.analysisResults.size(); }

    void moveTo(std::int32_t material, std::int32_t task) {
        component.moveToMaterial(material);
        component.currentTaskIndex = task;
    }
    std::int32_t currentMaterialIndex() const { return component.currentMaterialIndex; }
    std::int32_t currentTaskIndex() const { return component.currentTaskIndex; }

    const std::vector<std::int32_t>& analysisKinds() const { return component.analysisKinds; }
    void setAnalysisKindsOnly(std::vector<std::int32_t> kinds) {
        component.analysisKinds = std::move(kinds);
    }
    std::vector<ScenceRange>& scenceRanges() { return component.scenceRanges; }
    std::vector<std::vector<KeyFrameScore>>& keyFramesOfScences() {
        return component.keyFramesOfScences;
    }
    std::vector<KeyFrameScore>& scenceScores() { return component.scenceScores; }

    std::int64_t& minScenceDuration() { return component.minScenceDuration; }
    double& scenceDetectionThreshold() { return component.scenceDetectionThreshold; }
    std::int64_t minNeedAnalysisDuartion() const { return component.minNeedAnalysisDuartion; }
    std::int32_t photoNeedAnalysis() const { return component.photoNeedAnalysis; }
    std::int32_t& detectParamMode() { return component.detectParamMode; }
    double& progressScale() { return component.progressScale; }

    KorMaterialAnalysis& component;
};

}  // namespace KOR
