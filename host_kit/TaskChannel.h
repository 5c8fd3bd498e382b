#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "host/tasks.h"
#include "host_kit/AnalysisResults.h"

namespace host_kit {

/// What stands between a task and its runs: the only thing that both know.
///
/// The task object and the thread of each of its runs share one channel, so that a thread whose
/// task has gone still speaks to something, and is not heard. A run is known by its stop token:
/// once that is asked to stop, whatever the run still has to say is dropped. That is how stop() and
/// close() end a run without waiting for its thread.
///
/// Events are delivered one at a time and without the lock, so that listeners may do what the
/// contract allows them. While one is being delivered, `deliverer_` is the delivering thread, and
///  - another event waits for its turn;
///  - stop(), close() and removeListener() wait for the delivery on another thread, so that their
///    caller may free the listener; on the delivering thread, which would wait for itself, they
///    return at once, and a taskEventStopped that stop() owes is sent when the delivery is over;
///  - begin() does not wait: the new run's events follow by themselves.
/// After close(), the delivery that is under way ends with the listener that is being called.
/// A listener that throws ends the process: there is nobody to tell.
class TaskChannel {
public:
    /// Events name `sender`, which calls close() before it dies.
    explicit TaskChannel(KOR::IDmBaseObj& sender) : sender_(&sender) {}

    void addListener(KOR::IKorCallBack* listener);
    void removeListener(KOR::IKorCallBack* listener);

    /// Begins a run and forgets the results of the one before; none while another one is on.
    std::optional<std::stop_source> begin();

    /// Takes begin() back: the run has no thread.
    void abandon();

    /// Ends the current run, if there is one, with taskEventStopped.
    void stop();

    /// Ends the current run in silence: the sender is about to die.
    void close();

    bool isRunning() const;
    void forgetResults();

    /// Returns what the last run has published; null where there is nothing.
    std::shared_ptr<const AnalysisResults> results() const;

    /// The following come from the run's own thread. They do nothing once the run has been ended.
    void progress(const std::stop_token& run, std::int32_t percent);
    void fail(const std::stop_token& run, const std::string& reason);

    /// Publishes the results and sends taskEventFinished: the run is over.
    void finish(const std::stop_token& run, std::shared_ptr<const AnalysisResults> results);

private:
    using Lock = std::unique_lock<std::mutex>;

    bool deliversHere() const { return deliverer_ == std::this_thread::get_id(); }
    void waitForTurn(Lock& lock);
    void endRun();
    void send(const std::stop_token& run, KOR::TaskEvent event, KOR::TaskEventPayload payload);
    void deliver(Lock& lock, KOR::TaskEvent event, KOR::TaskEventPayload payload) noexcept;
    void callListeners(Lock& lock, KOR::TaskEvent event, KOR::TaskEventPayload& payload);

    mutable std::mutex mutex_;
    std::condition_variable turn_;
    KOR::IDmBaseObj* sender_;
    /// Null stands for one that was removed during the current delivery.
    std::vector<KOR::IKorCallBack*> listeners_;
    std::thread::id deliverer_;
    /// The run that is on.
    std::optional<std::stop_source> run_;
    /// Runs that were stopped during the current delivery and have not been told of yet.
    int stopsOwed_ = 0;
    std::shared_ptr<const AnalysisResults> results_;
};

}  // namespace host_kit
