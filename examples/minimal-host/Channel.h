#pragma once

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

#include "analyse.h"
#include "host/tasks.h"

namespace minimal_host {

/// What a task shares with the threads of its runs, which may outlive it: who listens, and which
/// run is on. A thread whose run has been ended, and so its token stopped, is not heard any more.
class Channel {
public:
    explicit Channel(KOR::IDmBaseObj* sender) : sender_(sender) {}

    void add(KOR::IKorCallBack* listener) {
        const Lock lock(mutex_);
        listeners_.push_back(listener);
    }
    void remove(KOR::IKorCallBack* listener) {
        Lock lock(mutex_);
        std::replace(listeners_.begin(), listeners_.end(), listener, noListener);
        waitForSpeaker(lock);
        if (speaker_ == std::thread::id()) std::erase(listeners_, noListener);
    }
    /// Ends the run with taskEventStopped.
    void stop() {
        Lock lock(mutex_);
        waitForSpeaker(lock);
        if (!endRun()) return;
        if (speaker_ == std::this_thread::get_id())
            ++stopsOwed_;
        else
            speak(lock, KOR::taskEventStopped, {});
    }
    /// Ends the run in silence: the task is about to die.
    void close() {
        Lock lock(mutex_);
        sender_ = nullptr;
        endRun();
        waitForSpeaker(lock);
    }
    /// Has `run` called with its token on a thread of its own; false where a run is on already.
    template <typename Run>
    bool begin(Run run) try {
        const Lock lock(mutex_);
        if (run_) return false;
        const std::stop_source source;
        std::thread(std::move(run), source.get_token()).detach();  // its first event waits for us
        run_ = source;
        results_.reset();
        return true;
    } catch (const std::exception&) {
        return false;
    }
    bool isRunning() {
        const Lock lock(mutex_);
        return run_.has_value();
    }
    std::shared_ptr<const Results> results() {
        const Lock lock(mutex_);
        return results_;
    }
    void forgetResults() {
        const Lock lock(mutex_);
        results_.reset();
    }
    /// The following come from the thread of a run.
    void send(const std::stop_token& run, KOR::TaskEvent event,
              const KOR::TaskEventPayload& payload) {
        Lock lock(mutex_);
        waitForSpeaker(lock);
        if (!run.stop_requested()) speak(lock, event, payload);
    }
    void finish(const std::stop_token& run, Results results) {
        Lock lock(mutex_);
        waitForSpeaker(lock);
        if (run.stop_requested()) return;
        results_ = std::make_shared<const Results>(std::move(results));
        run_.reset();  // over before it is said to be: a listener may start the next one
        speak(lock, KOR::taskEventFinished, {100, 0, ""});
    }

private:
    using Lock = std::unique_lock<std::mutex>;
    static constexpr KOR::IKorCallBack* noListener = nullptr;

    /// Waits while listeners are being told of an event by another thread.
    void waitForSpeaker(Lock& lock) {
        silence_.wait(lock, [this] {
            return speaker_ == std::thread::id() || speaker_ == std::this_thread::get_id();
        });
    }
    bool endRun() {
        if (!run_) return false;
        run_->request_stop();
        run_.reset();
        return true;
    }
    void speak(Lock& lock, KOR::TaskEvent event, KOR::TaskEventPayload payload) noexcept {
        speaker_ = std::this_thread::get_id();
        tell(lock, event, payload);
        for (; stopsOwed_ > 0; --stopsOwed_)
            tell(lock, KOR::taskEventStopped, payload = {});
        std::erase(listeners_, noListener);
        speaker_ = {};
        silence_.notify_all();
    }
    /// Calls the listeners without the lock: they may do anything, also end the task.
    void tell(Lock& lock, KOR::TaskEvent event, KOR::TaskEventPayload& payload) {
        const std::size_t count = listeners_.size();  // those added now hear the next event
        for (std::size_t i = 0; i < count && sender_ != nullptr; ++i) {
            KOR::IKorCallBack* const listener = listeners_[i];
            KOR::IDmBaseObj* const sender = sender_;
            if (listener == noListener) continue;
            lock.unlock();
            listener->onTaskEvent(sender, KOR::taskEventCategory, event, &payload);
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable silence_;
    KOR::IDmBaseObj* sender_;                    // null when the task has gone
    std::vector<KOR::IKorCallBack*> listeners_;  // null for one removed since the last event
    std::thread::id speaker_;                    // the thread that is telling them of an event
    std::optional<std::stop_source> run_;
    int stopsOwed_ = 0;  // events 4 that follow the one that is being told
    std::shared_ptr<const Results> results_;
};

}  // namespace minimal_host
