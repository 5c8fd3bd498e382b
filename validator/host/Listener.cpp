#include "validator/host/Listener.h"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <utility>

#include "validator/check/expect.h"
#include "validator/host/Patience.h"

namespace validator {

struct Listener::State {
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::function<void(const Told&)> action;
    std::vector<Told> events;
    std::size_t endsHandled = 0;
    int calls = 0;
    bool hasOverlapped = false;
    std::exception_ptr problem;

    std::size_t countOf(std::uint32_t event) const {
        return static_cast<std::size_t>(std::count_if(
            events.begin(), events.end(), [=](const Told& told) { return told.event == event; }));
    }

    /// Waits for `condition`; `what` is what has not happened when that takes too long.
    template <typename Condition>
    void wait(const std::string& what, Condition condition) const {
        std::unique_lock lock(mutex);
        const bool isInTime =
            changed.wait_for(lock, patience, [&] { return problem || condition(); });
        if (problem) std::rethrow_exception(problem);
        if (!isInTime) {
            std::vector<std::uint32_t> numbers;
            for (const Told& told : events)
                numbers.push_back(told.event);
            failForTime(what, "the events " + shown(numbers));
        }
    }
};

namespace {

Told toldOf(KOR::IDmBaseObj* sender, std::uint32_t category, std::uint32_t event,
            const void* payload) {
    Told told;
    told.sender = sender;
    told.category = category;
    told.event = event;
    told.thread = std::this_thread::get_id();
    if (payload == nullptr) return told;
    const auto& values = *static_cast<const KOR::TaskEventPayload*>(payload);
    told.hasPayload = true;
    told.progress = values.progress;
    told.reasonCode = values.reasonCode;
    const void* const end = std::memchr(values.reason, 0, sizeof(values.reason));
    const auto length =
        end == nullptr ? sizeof(values.reason)
                       : static_cast<std::size_t>(static_cast<const char*>(end) - values.reason);
    told.reason.assign(values.reason, length);
    return told;
}

}  // namespace

Listener::Listener() : state_(std::make_shared<State>()) {}

void Listener::doInside(std::function<void(const Told&)> action) {
    state_->action = std::move(action);
}

KOR::Status Listener::onTaskEvent(KOR::IDmBaseObj* sender, std::uint32_t category,
                                  std::uint32_t event, void* payload) {
    const std::shared_ptr<State> state = state_;
    const Told told = toldOf(sender, category, event, payload);
    {
        const std::scoped_lock lock(state->mutex);
        state->hasOverlapped = state->hasOverlapped || state->calls > 0;
        ++state->calls;
        state->events.push_back(told);
        state->changed.notify_all();
    }
    std::exception_ptr problem;
    try {
        if (state->action) state->action(told);
    } catch (...) {
        problem = std::current_exception();
    }
    const std::scoped_lock lock(state->mutex);
    --state->calls;
    if (problem && !state->problem) state->problem = problem;
    if (told.isLast()) ++state->endsHandled;
    state->changed.notify_all();
    return 0;
}

void Listener::waitForEnd(std::size_t times) const {
    state_->wait("a last event, 2 or 4", [&] { return state_->endsHandled >= times; });
}

void Listener::waitFor(std::uint32_t event, std::size_t times) const {
    state_->wait("event " + std::to_string(event), [&] { return state_->countOf(event) >= times; });
}

void Listener::waitForProgress() const {
    state_->wait("an event of progress, or a last one", [&] {
        return state_->countOf(KOR::taskEventProgress) > 0 || state_->endsHandled > 0;
    });
    const std::scoped_lock lock(state_->mutex);
    if (state_->countOf(KOR::taskEventProgress) == 0) {
        skip("the run tells of no progress, so that there is nothing to hold it by");
    }
}

std::vector<Told> Listener::events() const {
    const std::scoped_lock lock(state_->mutex);
    return state_->events;
}

std::vector<std::uint32_t> Listener::milestones() const {
    std::vector<std::uint32_t> numbers;
    for (const Told& told : events()) {
        if (told.event != KOR::taskEventProgress) numbers.push_back(told.event);
    }
    return numbers;
}

bool Listener::isBusy() const {
    const std::scoped_lock lock(state_->mutex);
    return state_->calls > 0;
}

bool Listener::hasOverlapped() const {
    const std::scoped_lock lock(state_->mutex);
    return state_->hasOverlapped;
}

}  // namespace validator
