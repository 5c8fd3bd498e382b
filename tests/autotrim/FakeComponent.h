#pragma once

#include <functional>
#include <vector>

#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace autotrim {

/// A component that does what a test tells it, and nothing by itself.
class FakeComponent final : public KOR::IKorMaterialAnalysis {
public:
    std::function<KOR::Status()> onStart = [] { return KOR::statusOk; };
    std::function<void()> onStop = [] {};
    std::function<KOR::Status(KOR::IKORVoidPtrList*)> onInsert = [](auto*) { return no(); };
    std::function<KOR::Status(KOR::IKORVoidPtrList*)> onGetResults = [](auto*) { return no(); };
    int stops = 0;

    std::size_t listeners() const { return listeners_.size(); }

    void report(KOR::TaskEvent event, std::int32_t progress = 0) {
        KOR::TaskEventPayload payload{};
        payload.progress = progress;
        for (KOR::IKorCallBack* listener : listeners_) {
            listener->onTaskEvent(this, KOR::taskEventCategory, event, &payload);
        }
    }

    KOR::Status start() override { return onStart(); }
    KOR::Status stop() override {
        ++stops;
        onStop();
        return KOR::statusOk;
    }
    KOR::Status addCallBack(KOR::IKorCallBack* callBack) override {
        listeners_.push_back(callBack);
        return KOR::statusOk;
    }
    KOR::Status removeCallBack(KOR::IKorCallBack* callBack) override {
        std::erase(listeners_, callBack);
        return KOR::statusOk;
    }

    std::uint32_t addRef() override { return 1; }
    std::uint32_t release() override { return 1; }
    std::uint32_t refCount() const override { return 1; }
    KOR::IDmDestroyObserver* getDestroyObserver() const override { return nullptr; }
    void setDestroyObserver(KOR::IDmDestroyObserver*) override {}
    void* queryInterface(const char*) override { return nullptr; }
    std::uint32_t getTaskType() override { return 10; }
    KOR::Status setTaskInfo(std::uint32_t, std::uint32_t, std::uint32_t) override { return no(); }
    KOR::Status getTaskInfo(std::uint32_t*, std::uint32_t*, std::uint32_t*) override {
        return no();
    }
    const char* getTaskName() override { return ""; }
    KOR::Status setTaskName(const char*) override { return no(); }
    KOR::Status pause() override { return no(); }
    KOR::Status resume() override { return no(); }
    std::uint32_t getState() override { return 0; }
    KOR::Status setPriority(std::uint32_t) override { return no(); }
    std::uint32_t getPriority() override { return 0; }
    KOR::Status setAnalysisKinds(KOR::IKORIntList*) override { return no(); }
    KOR::Status setIntOption(std::int32_t, std::int32_t) override { return no(); }
    KOR::Status insertMaterials(KOR::IKORVoidPtrList* list, std::int32_t) override {
        return onInsert(list);
    }
    KOR::Status removeMaterials(KOR::IKORVoidPtrList*) override { return no(); }
    KOR::Status removeMaterialAt(std::int32_t) override { return no(); }
    KOR::Status clearMaterials() override { return no(); }
    KOR::Status getResults(KOR::IKORVoidPtrList* list) override { return onGetResults(list); }
    KOR::Status setAnalysisParam(const char*, const KOR::KorValue*) override { return no(); }

private:
    static KOR::Status no() { return KOR::statusFailed; }

    std::vector<KOR::IKorCallBack*> listeners_;
};

}  // namespace autotrim
