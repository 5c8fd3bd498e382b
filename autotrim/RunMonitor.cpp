#include "autotrim/RunMonitor.h"

namespace autotrim {

KOR::Status RunMonitor::onReserved() {
    return KOR::statusOk;
}

KOR::Status RunMonitor::onTaskEvent(KOR::IDmBaseObj*, std::uint32_t category, std::uint32_t event,
                                    void* payload) {
    if (category != KOR::taskEventCategory) return KOR::statusOk;
    const std::lock_guard lock(mutex_);
    ++state_.events;
    news_ = true;
    if (event == KOR::taskEventProgress && payload != nullptr) {
        state_.percent = static_cast<const KOR::TaskEventPayload*>(payload)->progress;
    }
    if (event == KOR::taskEventFinished) state_.finished = true;
    if (event == KOR::taskEventStopped) state_.stopped = true;
    changed_.notify_all();
    return KOR::statusOk;
}

void RunMonitor::interrupt() {
    const std::lock_guard lock(mutex_);
    state_.interrupted = true;
    news_ = true;
    changed_.notify_all();
}

RunMonitor::State RunMonitor::state() const {
    const std::lock_guard lock(mutex_);
    return state_;
}

RunMonitor::State RunMonitor::waitFor(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, time, [this] { return news_; });
    news_ = false;
    return state_;
}

}  // namespace autotrim
