#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/tasks.h"
#include "host_kit/AnalysisRequest.h"
#include "host_kit/Counted.h"
#include "host_kit/Source.h"
#include "host_kit/TaskChannel.h"

namespace host_kit {

/// A task that has what its source names analysed: it keeps what it is told until a run starts,
/// which gets a copy.
///
/// The object itself is never seen by a run's thread; see TaskChannel for what is.
class AnalysisTask final : public Counted<KOR::IBsMediaAnalysisTask> {
public:
    /// `types` are MediaAnalysisTypes, at least one.
    explicit AnalysisTask(std::vector<std::int32_t> types);

    void* queryInterface(const char* name) override;

    std::uint32_t getTaskType() override;
    KOR::Status setTaskInfo(std::uint32_t first, std::uint32_t second,
                            std::uint32_t third) override;
    KOR::Status getTaskInfo(std::uint32_t* first, std::uint32_t* second,
                            std::uint32_t* third) override;
    const char* getTaskName() override { return name_.c_str(); }
    KOR::Status setTaskName(const char* name) override;
    KOR::Status addCallBack(KOR::IKorCallBack* callBack) override;
    KOR::Status removeCallBack(KOR::IKorCallBack* callBack) override;
    KOR::Status start() override;
    KOR::Status pause() override { return KOR::statusFailed; }
    KOR::Status resume() override { return KOR::statusFailed; }
    KOR::Status stop() override;
    std::uint32_t getState() override;
    KOR::Status setPriority(std::uint32_t priority) override;
    std::uint32_t getPriority() override { return priority_; }

    KOR::Status setSource(KOR::IDmMediaSource* source, std::int64_t, std::int64_t) override;
    KOR::Status reserved1() override { return KOR::statusFailed; }
    KOR::Status reserved2() override { return KOR::statusFailed; }
    KOR::Status reserved3() override { return KOR::statusFailed; }
    KOR::Status setParameterMode(std::int32_t mode) override;
    KOR::Status reserved5() override { return KOR::statusFailed; }
    KOR::Status reserved6() override { return KOR::statusFailed; }
    KOR::Status setSceneRanges(KOR::IKORVoidPtrList* ranges) override;
    KOR::Status reserved8() override { return KOR::statusFailed; }
    KOR::Status reserved9() override { return KOR::statusFailed; }
    KOR::Status reserved10() override { return KOR::statusFailed; }
    KOR::Status setKeyFramePositions(KOR::IKORLonglongList* positions) override;
    KOR::Status reserved12() override { return KOR::statusFailed; }
    KOR::Status reserved13() override { return KOR::statusFailed; }
    KOR::Status setParameterBlock(std::int32_t type, const void* block) override;
    KOR::Status reserved15() override { return KOR::statusFailed; }
    KOR::Status reserved16() override { return KOR::statusFailed; }
    KOR::Status getResultList(std::int32_t kind, std::int32_t, KOR::IKORVoidPtrList* list,
                              std::int32_t) override;

private:
    /// What belongs to one source, and is forgotten with it.
    struct Preparation {
        std::shared_ptr<Analysable> analysable;
        std::int32_t mode = KOR::parameterModeDefault;
        std::vector<KOR::TickRange> sceneRanges;
        std::optional<KOR::SceneParameters> sceneParameters;
        std::optional<KOR::KeyFrameParameters> keyFrameParameters;
        std::vector<std::int64_t> positionsTicks;
    };

    ~AnalysisTask() override;

    bool computes(std::int32_t type) const;
    AnalysisRequest request() const;

    const std::vector<std::int32_t> types_;
    const std::shared_ptr<TaskChannel> channel_;
    std::array<std::uint32_t, 3> info_{};
    std::string name_;
    std::uint32_t priority_ = 100;
    Preparation preparation_;
};

}  // namespace host_kit
