#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "host/tasks.h"

namespace reference_host_tests {

/// Listens to a task: keeps what it is told, and does what the test wants done inside an event.
class TaskRecorder final : public KOR::IKorCallBack {
public:
    struct Event {
        KOR::IDmBaseObj* sender;
        std::uint32_t category;
        std::uint32_t event;
        std::int32_t progress;
        std::string reason;
    };

    /// Is called inside every event, before anyone who waits for the event goes on.
    std::function<void(const Event&)> inside = [](const Event&) {};

    KOR::Status onReserved() override { return 0; }

    KOR::Status onTaskEvent(KOR::IDmBaseObj* sender, std::uint32_t category, std::uint32_t event,
                            void* payload) override {
        const auto& values = *static_cast<const KOR::TaskEventPayload*>(payload);
        const Event entry{sender, category, event, values.progress, values.reason};
        inside(entry);
        const std::scoped_lock lock(mutex_);
        events_.push_back(entry);
        changed_.notify_all();
        return 0;
    }

    /// Waits for the `times`th event of this number.
    void waitFor(std::uint32_t event, std::size_t times = 1) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return countOf(event) >= times; });
    }

    std::vector<Event> events() const {
        const std::scoped_lock lock(mutex_);
        return events_;
    }

    /// The numbers of all events but those of progress, in order.
    std::vector<std::uint32_t> milestones() const {
        std::vector<std::uint32_t> numbers;
        for (const Event& entry : events()) {
            if (entry.event != KOR::taskEventProgress) numbers.push_back(entry.event);
        }
        return numbers;
    }

private:
    std::size_t countOf(std::uint32_t event) const {
        std::size_t count = 0;
        for (const Event& entry : events_)
            count += entry.event == event ? 1 : 0;
        return count;
    }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Event> events_;
};

using Milestones = std::vector<std::uint32_t>;

}  // namespace reference_host_tests
