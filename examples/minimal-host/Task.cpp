#include <algorithm>
#include <cstring>
#include <new>

#include "Channel.h"
#include "Counted.h"

namespace minimal_host {
namespace {

struct Stopped {};

/// What the thread of a run does.
void run(const std::shared_ptr<Channel>& channel, const Work& work, const std::stop_token& stop) {
    Results results;
    std::int32_t last = -1;
    try {
        results = analyse(work, [&](std::int32_t percent) {
            if (stop.stop_requested()) throw Stopped();
            if (percent > last) channel->send(stop, KOR::taskEventProgress, {percent, 0, ""});
            last = percent;
        });
    } catch (const Stopped&) {
        return;
    } catch (const std::exception& failure) {
        if (stop.stop_requested()) return;
        if (work.clip) work.clip->isTainted = true;
        KOR::TaskEventPayload payload{0, 1, ""};
        std::strncpy(payload.reason, failure.what(), sizeof payload.reason - 1);
        channel->send(stop, KOR::taskEventFailed, payload);
    }
    channel->finish(stop, std::move(results));
}

class Task final : public Counted<KOR::IBsMediaAnalysisTask> {
public:
    Task(std::int32_t type, const std::set<std::int32_t>& types) : type_(type), types_(types) {}

    void* queryInterface(const char* name) override {
        if (isName(name, "IKorBaseTask")) return static_cast<KOR::IKorBaseTask*>(this);
        if (isName(name, "IBsMediaAnalysisTask")) return static_cast<IBsMediaAnalysisTask*>(this);
        return Counted::queryInterface(name);
    }
    std::uint32_t getTaskType() override { return static_cast<std::uint32_t>(type_); }
    KOR::Status setTaskInfo(std::uint32_t first, std::uint32_t second,
                            std::uint32_t third) override {
        info_[0] = first, info_[1] = second, info_[2] = third;
        return KOR::statusOk;
    }
    KOR::Status getTaskInfo(std::uint32_t* first, std::uint32_t* second,
                            std::uint32_t* third) override {
        if (!first || !second || !third) return KOR::statusFailed;
        *first = info_[0], *second = info_[1], *third = info_[2];
        return KOR::statusOk;
    }
    const char* getTaskName() override { return name_.c_str(); }
    KOR::Status setTaskName(const char* name) override {
        if (name == nullptr) return KOR::statusFailed;
        name_ = name;
        return KOR::statusOk;
    }
    KOR::Status addCallBack(KOR::IKorCallBack* listener) override {
        if (listener != nullptr) channel_->add(listener);
        return KOR::statusOk;
    }
    KOR::Status removeCallBack(KOR::IKorCallBack* listener) override {
        if (listener == nullptr) return KOR::statusFailed;
        std::shared_ptr(channel_)->remove(listener);
        return KOR::statusOk;
    }
    KOR::Status start() override {
        Work work = work_;
        work.types = types_;
        if (work.mode == KOR::parameterModeDefault)
            work.scene = Work().scene, work.keyFrame = Work().keyFrame;
        const auto channel = channel_;
        const bool isOn =
            channel->begin([channel, work = std::move(work)](const std::stop_token& stop) {
                run(channel, work, stop);
            });
        return isOn ? KOR::statusOk : KOR::statusFailed;  // by now the task may have gone
    }
    KOR::Status pause() override { return KOR::statusFailed; }
    KOR::Status resume() override { return KOR::statusFailed; }
    KOR::Status stop() override {
        std::shared_ptr(channel_)->stop();
        return KOR::statusOk;
    }
    std::uint32_t getState() override { return channel_->isRunning() ? 1 : 0; }
    KOR::Status setPriority(std::uint32_t priority) override {
        priority_ = priority;
        return KOR::statusOk;
    }
    std::uint32_t getPriority() override { return priority_; }

    KOR::Status setSource(KOR::IDmMediaSource* source, std::int64_t, std::int64_t) override {
        work_ = {};
        channel_->forgetResults();
        auto* const clip = dynamic_cast<Clip*>(source);
        if (clip != nullptr) work_.clip = clip->shared_from_this();
        return clip == nullptr ? KOR::statusFailed : KOR::statusOk;
    }
    KOR::Status setParameterMode(std::int32_t mode) override {
        const bool isKnown =
            mode == KOR::parameterModeDefault || mode == KOR::parameterModeExplicit;
        if (isKnown) work_.mode = mode;
        return isKnown ? KOR::statusOk : KOR::statusFailed;
    }
    KOR::Status setSceneRanges(KOR::IKORVoidPtrList* ranges) override {
        if (ranges == nullptr) return KOR::statusFailed;
        work_.ranges.clear();
        for (std::int64_t i = 0; i < ranges->count(); ++i)
            if (const auto* range = static_cast<const KOR::TickRange*>(ranges->at(i)))
                work_.ranges.push_back(*range);
        return KOR::statusOk;
    }
    KOR::Status setKeyFramePositions(KOR::IKORLonglongList* positions) override {
        if (positions == nullptr) return KOR::statusFailed;
        work_.positions.clear();
        for (std::int64_t i = 0; i < positions->count(); ++i)
            work_.positions.push_back(positions->at(i));
        return KOR::statusOk;
    }
    KOR::Status setParameterBlock(std::int32_t type, const void* block) override {
        if (block == nullptr) return KOR::statusFailed;
        if (type == KOR::analysisTypeScene) {
            const auto& scene = *static_cast<const KOR::SceneParameters*>(block);
            if (!isAboveZero(scene.sensitivity) || !isAboveZero(scene.threshold))
                return KOR::statusFailed;
            work_.scene = scene;
            return KOR::statusOk;
        }
        if (type != KOR::analysisTypeKeyFrame) return KOR::statusFailed;
        const auto& keyFrame = *static_cast<const KOR::KeyFrameParameters*>(block);
        if (keyFrame.maxPerScene < 1 || keyFrame.secondsPerKeyFrame < 1 ||
            keyFrame.candidatesPerKeyFrame < 1 || keyFrame.marginFramesBegin < 0 ||
            keyFrame.marginFramesEnd < 0)
            return KOR::statusFailed;
        work_.keyFrame = keyFrame;
        return KOR::statusOk;
    }
    KOR::Status getResultList(std::int32_t kind, std::int32_t, KOR::IKORVoidPtrList* list,
                              std::int32_t) override {
        if (list == nullptr) return KOR::statusFailed;
        const std::shared_ptr<const Results> results = channel_->results();
        const auto found = results ? results->find(kind) : Results::const_iterator();
        if (!results || found == results->end()) return KOR::statusOk;
        for (const std::string& element : found->second) {
            void* const copy = ::operator new(element.size(), std::nothrow);
            if (copy == nullptr) return KOR::statusFailed;
            std::memcpy(copy, element.data(), element.size());
            if (list->append(copy) == KOR::statusOk) continue;
            ::operator delete(copy);
            return KOR::statusFailed;
        }
        return KOR::statusOk;
    }
    KOR::Status reserved1() override { return KOR::statusFailed; }
    KOR::Status reserved2() override { return KOR::statusFailed; }
    KOR::Status reserved3() override { return KOR::statusFailed; }
    KOR::Status reserved5() override { return KOR::statusFailed; }
    KOR::Status reserved6() override { return KOR::statusFailed; }
    KOR::Status reserved8() override { return KOR::statusFailed; }
    KOR::Status reserved9() override { return KOR::statusFailed; }
    KOR::Status reserved10() override { return KOR::statusFailed; }
    KOR::Status reserved12() override { return KOR::statusFailed; }
    KOR::Status reserved13() override { return KOR::statusFailed; }
    KOR::Status reserved15() override { return KOR::statusFailed; }
    KOR::Status reserved16() override { return KOR::statusFailed; }

private:
    ~Task() override { channel_->close(); }
    static bool isAboveZero(double number) { return number > 0 && number <= 1e300; }

    const std::int32_t type_;
    const std::set<std::int32_t> types_;
    const std::shared_ptr<Channel> channel_ = std::make_shared<Channel>(this);
    Work work_;  // as it has been told since setSource
    std::string name_;
    std::uint32_t info_[3] = {};
    std::uint32_t priority_ = 100;
};

}  // namespace
}  // namespace minimal_host

KOR::IKorBaseTask* createMediaAnalysisTask(KOR::IKORIntList* types) try {
    const std::set<std::int32_t> known{KOR::analysisTypeScene, KOR::analysisTypeBlur,
                                       KOR::analysisTypeFace, KOR::analysisTypeEntropy,
                                       KOR::analysisTypeKeyFrame};
    std::set<std::int32_t> wanted;
    for (std::int64_t i = 0; types != nullptr && i < types->count(); ++i)
        wanted.insert(types->at(i));
    if (wanted.empty() || !std::ranges::includes(known, wanted)) return nullptr;
    return new minimal_host::Task(types->at(0), wanted);
} catch (const std::exception&) {
    return nullptr;
}
