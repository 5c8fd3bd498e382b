#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/ListenerList.h"
#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "modules/BusinessLayer/MaterialAnalysis/Records.h"
#include "modules/BusinessLayer/MaterialAnalysis/Ref.h"
#include "modules/BusinessLayer/MaterialAnalysis/RefCnt.h"
#include "modules/BusinessLayer/MaterialAnalysis/ResultCacheText.h"

namespace KOR {

/// The component. This class orchestrates: it talks to the host and keeps the state of the run;
/// what is computed from plain values stands in functions of its own.
///
/// Its sources, one for each concern: KorMaterialAnalysis.cpp (identity, materials, parameters),
/// TaskLaunch.cpp, RunDriver.cpp, ResultIntake.cpp, PictureIntake.cpp, AutoTrim.cpp and
/// ResultCache.cpp.
class KorMaterialAnalysis : public IKorMaterialAnalysis, public IKorCallBack, public RefCnt<void> {
public:
    KorMaterialAnalysis() = default;
    ~KorMaterialAnalysis() override;

    // IDmBaseObj
    std::uint32_t addRef() override;
    std::uint32_t release() override;
    std::uint32_t refCount() const override;
    IDmDestroyObserver* getDestroyObserver() const override;
    void setDestroyObserver(IDmDestroyObserver* observer) override;
    void* queryInterface(const char* name) override;

    // IKorBaseTask
    std::uint32_t getTaskType() override;
    Status setTaskInfo(std::uint32_t first, std::uint32_t second, std::uint32_t third) override;
    Status getTaskInfo(std::uint32_t* first, std::uint32_t* second, std::uint32_t* third) override;
    const char* getTaskName() override;
    Status setTaskName(const char* name) override;
    Status addCallBack(IKorCallBack* callBack) override;
    Status removeCallBack(IKorCallBack* callBack) override;
    Status start() override;
    Status pause() override;
    Status resume() override;
    Status stop() override;
    std::uint32_t getState() override;
    Status setPriority(std::uint32_t priority) override;
    std::uint32_t getPriority() override;

    // IKorMaterialAnalysis
    Status setAnalysisKinds(IKORIntList* kinds) override;
    Status setIntOption(std::int32_t key, std::int32_t value) override;
    Status insertMaterials(IKORVoidPtrList* list, std::int32_t position) override;
    Status removeMaterials(IKORVoidPtrList* list) override;
    Status removeMaterialAt(std::int32_t index) override;
    Status clearMaterials() override;
    Status getResults(IKORVoidPtrList* list) override;
    Status setAnalysisParam(const char* key, const KorValue* value) override;

    // IKorCallBack: the component listens to the tasks that it has made.
    Status onReserved() override;
    Status onTaskEvent(IDmBaseObj* sender, std::uint32_t category, std::uint32_t event,
                       void* payload) override;

private:
    /// Lets unit tests call single steps and look at the working state.
    friend struct ComponentProbe;

    // Launching: each prepares a task for the current material and starts it. Null gives
    // statusFailed.
    Status startFaceDetect(IBsMediaAnalysisTask* task);
    Status startBlurDetect(IBsMediaAnalysisTask* task);
    Status startKeyFrameDetect(IBsMediaAnalysisTask* task);
    Status startScenceDetect(IBsMediaAnalysisTask* task);
    Status startEntropyCalculate(IBsMediaAnalysisTask* task);
    Status startScenceAndKeyframeDetect(IBsMediaAnalysisTask* task);
    Status startFaceAndEntropyAnalysis(IBsMediaAnalysisTask* task);

    Status prepareTask(IBsMediaAnalysisTask& task, std::int32_t flag);
    Status handKeyFramePositions(IBsMediaAnalysisTask& task);
    Status handScenceRanges(IBsMediaAnalysisTask& task);
    Status handScenceParameters(IBsMediaAnalysisTask& task);
    Status launch(IBsMediaAnalysisTask& task, Status prepared, const LogSource& source,
                  const char* text);

    // The run.
    Status onTaskFinished();
    Status takeInFinishedTask();
    void advanceToNextTask();
    void selectMaterial();
    bool selectPhotoTask();
    Status startCurrentTask();
    void onTaskFinishedEvent();
    void forwardProgress(const void* payload);
    std::int32_t overallProgressAt(std::int32_t taskPercent) const;
    void moveToMaterial(std::int32_t index);
    bool isBeyondLastMaterial() const;
    std::int32_t lastTaskIndex() const;
    std::int32_t currentKind() const;
    IDmBaseMedia* currentMaterial() const;
    IBsMediaAnalysisTask* currentTask() const;

    // Taking in what a finished task has found. A null task gives statusFailed.
    Status scenceDetectFinished(IBsMediaAnalysisTask* task);
    Status keyFrameDetectFinished(IBsMediaAnalysisTask* task);
    Status keyFrameDetectFinishedInternal(IBsMediaAnalysisTask* task);
    Status scenceAndKeyframeDetectFinished(IBsMediaAnalysisTask* task);
    std::vector<KeyFrameScore> keyFramesOfScence(const IKORVoidPtrList* found, std::size_t scence,
                                                 std::int64_t& cursor) const;
    void logScencesWithKeyFrames() const;
    Status faceDetectFinished(IBsMediaAnalysisTask* task);
    Status faceDetectFinishedInternal(IBsMediaAnalysisTask* task);
    void addFaceScores(const IKORVoidPtrList* found);
    void keepFaceOfPhoto(const IKORVoidPtrList* found);
    Status entropyCalculateFinished(IBsMediaAnalysisTask* task);
    Status entropyCalculateFinishedInternal(IBsMediaAnalysisTask* task);
    Status faceAndEntropyAnalysisFinished(IBsMediaAnalysisTask* task);

    // The auto-trim result.
    Status rankScenceScores();
    Status buildAnalysisResults();
    Status addDefaultResult(std::int32_t isPhoto);
    Status finishedAllAnalysis();

    // The result file.
    bool restoreMaterialAnalysisResult(IDmBaseMedia* media);
    void appendResults(IDmBaseMedia& media, const std::vector<MaterialAnalysisResult>& results);
    bool saveMaterialAnalysisResult(IDmBaseMedia* media,
                                    const std::vector<const MaterialAnalysisResult*>& results);
    ResultCacheHeader resultCacheHeader() const;

    std::array<std::uint32_t, 3> taskInfo{};
    std::string taskName;
    std::vector<Ref<IDmBaseMedia>> materials;
    std::vector<Ref<IKorBaseTask>> tasks;
    std::vector<std::int32_t> analysisKinds;  ///< parallel to `tasks` as long as none is missing
    std::map<std::int32_t, std::int32_t> intOptions;
    ListenerList callBacks;
    std::uint32_t state = 0;
    std::int32_t currentTaskIndex = -1;      ///< -1: no task of the run was started yet
    std::int32_t currentMaterialIndex = -1;  ///< written by moveToMaterial only
    std::vector<ScenceRange> scenceRanges;
    std::vector<std::vector<KeyFrameScore>> keyFramesOfScences;
    std::vector<KeyFrameScore> scenceScores;
    std::vector<OwnedResult> analysisResults;
    std::int64_t minScenceDuration = 2;  ///< seconds
    double reservedFactor = 10.0;        ///< read by nothing
    double progressScale = 1.0;
    double scenceDetectionThreshold = 3.0;
    std::int64_t minNeedAnalysisDuartion = 2;  ///< seconds
    std::int32_t photoNeedAnalysis = 0;
    std::uint32_t taskPriority = 100;
    std::int32_t detectParamMode = parameterModeExplicit;
    const std::string resultVersion = "1.0.0.1";
    std::atomic<std::uint8_t> cancelled{0};
};

}  // namespace KOR
