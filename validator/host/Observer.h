#pragma once

#include <atomic>
#include <thread>

#include "host/IDmBaseObj.h"

namespace validator {

/// Counts how often it is told of a destruction.
class Observer final : public KOR::IDmDestroyObserver {
public:
    void objectDestroyed() override {
        thread_ = std::this_thread::get_id();
        ++times_;
    }

    int times() const { return times_; }

    /// The thread on which it was told last.
    std::thread::id thread() const { return thread_; }

private:
    std::atomic<int> times_{0};
    std::atomic<std::thread::id> thread_{};
};

}  // namespace validator
