#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fake_host/Counted.h"
#include "fake_host/FakeMedia.h"
#include "host/tasks.h"

namespace fake_host {

/// A task that does nothing by itself: once started it runs until the test finishes, fails or stops
/// it. Its results are those of the material that is its source. Every call is noted.
class FakeTask final : public Counted<KOR::IBsMediaAnalysisTask> {
public:
    explicit FakeTask(std::vector<std::int32_t> types);

    // What a test does with a task.

    bool running() const { return running_; }
    FakeMedia* source() const { return source_.get(); }
    const std::vector<KOR::IKorCallBack*>& listeners() const { return callBacks_; }

    /// How often results of this kind were asked for since the last start.
    int askedFor(std::int32_t kind) const;

    /// Reports progress.
    void progress(std::int32_t percent);

    /// Ends the run as one that went well. The task may be gone when this returns.
    void finish();

    /// Reports a failure with its reason, then the end.
    void fail(std::int32_t code, const std::string& reason);

    /// Sends any event at all. The task may be gone when this returns.
    void send(std::uint32_t category, std::uint32_t event, void* payload);

    /// Lets an operation, called by its name, return `status` instead of doing anything.
    void answer(const std::string& operation, KOR::Status status);

    /// Runs `action` inside an operation, before it does anything; also inside "destruction".
    void onCall(const std::string& operation, std::function<void()> action);

    /// Puts null in the place of the `index`th element of every list of results.
    void loseElement(std::size_t index) { lostElements_.insert(index); }

    /// Lets the query by the name "IBsMediaAnalysisTask" fail.
    void hideAnalysisInterface() { analysisInterfaceHidden_ = true; }

    /// Lets stop() of a running task send no event.
    void stopSilently() { stopsSilently_ = true; }

    // IDmBaseObj and IKorBaseTask
    void* queryInterface(const char* name) override;
    std::uint32_t getTaskType() override { return 1; }
    KOR::Status setTaskInfo(std::uint32_t, std::uint32_t, std::uint32_t) override;
    KOR::Status getTaskInfo(std::uint32_t*, std::uint32_t*, std::uint32_t*) override;
    const char* getTaskName() override { return ""; }
    KOR::Status setTaskName(const char*) override { return unexpected("setTaskName"); }
    KOR::Status addCallBack(KOR::IKorCallBack* callBack) override;
    KOR::Status removeCallBack(KOR::IKorCallBack* callBack) override;
    KOR::Status start() override;
    KOR::Status pause() override { return unexpected("pause"); }
    KOR::Status resume() override { return unexpected("resume"); }
    KOR::Status stop() override;
    std::uint32_t getState() override { return 0; }
    KOR::Status setPriority(std::uint32_t priority) override;
    std::uint32_t getPriority() override { return 0; }

    // IBsMediaAnalysisTask
    KOR::Status setSource(KOR::IDmMediaSource* source, std::int64_t reserved1,
                          std::int64_t reserved2) override;
    KOR::Status reserved1() override { return unexpected("reserved1"); }
    KOR::Status reserved2() override { return unexpected("reserved2"); }
    KOR::Status reserved3() override { return unexpected("reserved3"); }
    KOR::Status setParameterMode(std::int32_t mode) override;
    KOR::Status reserved5() override { return unexpected("reserved5"); }
    KOR::Status reserved6() override { return unexpected("reserved6"); }
    KOR::Status setSceneRanges(KOR::IKORVoidPtrList* ranges) override;
    KOR::Status reserved8() override { return unexpected("reserved8"); }
    KOR::Status reserved9() override { return unexpected("reserved9"); }
    KOR::Status reserved10() override { return unexpected("reserved10"); }
    KOR::Status setKeyFramePositions(KOR::IKORLonglongList* positions) override;
    KOR::Status reserved12() override { return unexpected("reserved12"); }
    KOR::Status reserved13() override { return unexpected("reserved13"); }
    KOR::Status setParameterBlock(std::int32_t type, const void* block) override;
    KOR::Status reserved15() override { return unexpected("reserved15"); }
    KOR::Status reserved16() override { return unexpected("reserved16"); }
    KOR::Status getResultList(std::int32_t kind, std::int32_t reserved1, KOR::IKORVoidPtrList* list,
                              std::int32_t reserved2) override;

private:
    ~FakeTask() override;

    /// Appends a copy of every result, each in a block of its own.
    template <typename Result>
    KOR::Status appendCopies(const std::vector<Result>& results, KOR::IKORVoidPtrList& list) const;

    void note(const char* operation) const;
    void note(std::string operation, const std::vector<std::string>& arguments) const;
    KOR::Status unexpected(const std::string& operation) const;

    /// Runs the hook of `operation` and returns what the test wants it to answer.
    KOR::Status enter(const char* operation, KOR::Status otherwise = KOR::statusOk);

    const std::shared_ptr<std::atomic<bool>> alive_ = std::make_shared<std::atomic<bool>>(true);
    const std::vector<std::int32_t> types_;
    const std::size_t number_;
    std::vector<KOR::IKorCallBack*> callBacks_;
    std::atomic<bool> running_{false};
    Owned<FakeMedia> source_;
    std::map<std::string, KOR::Status, std::less<>> answers_;
    std::map<std::string, std::function<void()>, std::less<>> hooks_;
    std::map<std::int32_t, int> asked_;
    std::set<std::size_t> lostElements_;
    bool analysisInterfaceHidden_ = false;
    bool stopsSilently_ = false;
};

}  // namespace fake_host
