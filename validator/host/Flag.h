#pragma once

#include <condition_variable>
#include <mutex>

#include "validator/host/Patience.h"

namespace validator {

/// Something that happens once, for which other threads wait. Any thread.
class Flag {
public:
    void set() {
        const std::scoped_lock lock(mutex_);
        isSet_ = true;
        changed_.notify_all();
    }

    bool isSet() const { return isSetWithin({}); }

    /// Says whether it is set after `time` at most.
    bool isSetWithin(std::chrono::milliseconds time) const {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, time, [this] { return isSet_; });
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    bool isSet_ = false;
};

}  // namespace validator
