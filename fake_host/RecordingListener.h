#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fake_host/FakeHost.h"
#include "host/tasks.h"

namespace fake_host {

/// One event as a listener got it; the payload is a copy.
struct HeardEvent {
    KOR::IDmBaseObj* sender;
    std::uint32_t category;
    std::uint32_t event;
    void* payloadAddress;
    std::optional<KOR::TaskEventPayload> payload;
};

/// Notes every event and may act on it.
class RecordingListener final : public KOR::IKorCallBack {
public:
    explicit RecordingListener(std::string name = "listener") : name_(std::move(name)) {}

    KOR::Status onReserved() override { return KOR::statusOk; }

    KOR::Status onTaskEvent(KOR::IDmBaseObj* sender, std::uint32_t category, std::uint32_t event,
                            void* payload) override {
        HeardEvent heard{sender, category, event, payload, std::nullopt};
        if (payload != nullptr) {
            std::memcpy(&heard.payload.emplace(), payload, sizeof(KOR::TaskEventPayload));
        }
        if (host().recording) {
            const std::string percent =
                heard.payload ? std::to_string(heard.payload->progress) : "null";
            host().note(name_ + ": event " + std::to_string(event) + ", " + percent);
        }
        heard_.push_back(heard);
        if (onEvent) onEvent(event);
        return 0;
    }

    /// What was heard so far, in order.
    const std::vector<HeardEvent>& heard() const { return heard_; }

    /// The numbers of the events heard so far, in order.
    std::vector<std::uint32_t> events() const {
        std::vector<std::uint32_t> numbers;
        for (const HeardEvent& heard : heard_)
            numbers.push_back(heard.event);
        return numbers;
    }

    /// The percentage of the last event. Throws std::logic_error where there was no event, or none
    /// with a payload.
    std::int32_t lastProgress() const {
        if (heard_.empty() || !heard_.back().payload) {
            throw std::logic_error("no event with a percentage was told last");
        }
        return heard_.back().payload->progress;
    }

    /// Runs at the end of every event, with its number.
    std::function<void(std::uint32_t event)> onEvent;

private:
    std::string name_;
    std::vector<HeardEvent> heard_;
};

}  // namespace fake_host
