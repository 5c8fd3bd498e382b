#include "host_kit/TaskChannel.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace host_kit {
namespace {

/// The one code of this host: the reason says more.
constexpr std::int32_t reasonCodeFailed = 1;

KOR::TaskEventPayload payloadOf(std::int32_t percent) {
    KOR::TaskEventPayload payload{};
    payload.progress = percent;
    return payload;
}

KOR::TaskEventPayload payloadOf(const std::string& reason) {
    KOR::TaskEventPayload payload{};
    payload.reasonCode = reasonCodeFailed;
    std::size_t length = std::min(reason.size(), sizeof(payload.reason) - 1);
    // A character is cut off whole: the bytes after a UTF-8 character's first one begin with 10.
    while (length < reason.size() && length > 0 && (reason[length] & 0xc0) == 0x80)
        --length;
    std::memcpy(payload.reason, reason.data(), length);
    return payload;
}

}  // namespace

void TaskChannel::addListener(KOR::IKorCallBack* listener) {
    const Lock lock(mutex_);
    listeners_.push_back(listener);
}

void TaskChannel::removeListener(KOR::IKorCallBack* listener) {
    Lock lock(mutex_);
    std::replace(listeners_.begin(), listeners_.end(), listener,
                 static_cast<KOR::IKorCallBack*>(nullptr));
    if (!deliversHere()) waitForTurn(lock);
    if (deliverer_ == std::thread::id()) std::erase(listeners_, nullptr);
}

std::optional<std::stop_source> TaskChannel::begin() {
    const Lock lock(mutex_);
    if (run_) return std::nullopt;
    results_.reset();
    return run_.emplace();
}

void TaskChannel::abandon() {
    const Lock lock(mutex_);
    endRun();
}

void TaskChannel::stop() {
    Lock lock(mutex_);
    if (deliversHere()) {
        if (run_) ++stopsOwed_;
        endRun();
        return;
    }
    waitForTurn(lock);
    if (!run_) return;
    endRun();
    deliver(lock, KOR::taskEventStopped, {});
}

void TaskChannel::close() {
    Lock lock(mutex_);
    sender_ = nullptr;
    endRun();
    if (!deliversHere()) waitForTurn(lock);
}

bool TaskChannel::isRunning() const {
    const Lock lock(mutex_);
    return run_.has_value();
}

void TaskChannel::forgetResults() {
    const Lock lock(mutex_);
    results_.reset();
}

std::shared_ptr<const AnalysisResults> TaskChannel::results() const {
    const Lock lock(mutex_);
    return results_;
}

void TaskChannel::progress(const std::stop_token& run, std::int32_t percent) {
    send(run, KOR::taskEventProgress, payloadOf(percent));
}

void TaskChannel::fail(const std::stop_token& run, const std::string& reason) {
    send(run, KOR::taskEventFailed, payloadOf(reason));
}

void TaskChannel::finish(const std::stop_token& run,
                         std::shared_ptr<const AnalysisResults> results) {
    Lock lock(mutex_);
    waitForTurn(lock);
    if (run.stop_requested()) return;
    results_ = std::move(results);
    // Over before it is said to be: a listener may start the next run.
    run_.reset();
    deliver(lock, KOR::taskEventFinished, payloadOf(100));
}

void TaskChannel::waitForTurn(Lock& lock) {
    turn_.wait(lock, [this] { return deliverer_ == std::thread::id(); });
}

void TaskChannel::endRun() {
    if (run_) run_->request_stop();
    run_.reset();
}

void TaskChannel::send(const std::stop_token& run, KOR::TaskEvent event,
                       KOR::TaskEventPayload payload) {
    Lock lock(mutex_);
    waitForTurn(lock);
    if (!run.stop_requested()) deliver(lock, event, payload);
}

void TaskChannel::deliver(Lock& lock, KOR::TaskEvent event,
                          KOR::TaskEventPayload payload) noexcept {
    deliverer_ = std::this_thread::get_id();
    callListeners(lock, event, payload);
    for (; stopsOwed_ > 0; --stopsOwed_) {
        payload = {};
        callListeners(lock, KOR::taskEventStopped, payload);
    }
    std::erase(listeners_, nullptr);
    deliverer_ = {};
    turn_.notify_all();
}

void TaskChannel::callListeners(Lock& lock, KOR::TaskEvent event, KOR::TaskEventPayload& payload) {
    // One that is added by a listener hears from the next event on.
    const std::size_t count = listeners_.size();
    for (std::size_t i = 0; i < count && sender_ != nullptr; ++i) {
        KOR::IKorCallBack* const listener = listeners_[i];
        if (listener == nullptr) continue;
        KOR::IDmBaseObj* const sender = sender_;
        lock.unlock();
        listener->onTaskEvent(sender, KOR::taskEventCategory, event, &payload);
        lock.lock();
    }
}

}  // namespace host_kit
