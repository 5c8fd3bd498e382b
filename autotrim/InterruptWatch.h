#pragma once

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

namespace autotrim {

/// Turns SIGINT and SIGTERM into a call on a thread of its own, where everything is allowed.
///
/// To be made before any other thread: the signals are blocked on the thread that makes it, and so
/// on all that come after. A second signal ends the process at once.
class InterruptWatch {
public:
    explicit InterruptWatch(std::function<void()> onInterrupt);
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    /// Lets the signals act again as before.
    ~InterruptWatch();

private:
    void watch();

    std::function<void()> onInterrupt_;
    sigset_t signals_{};
    sigset_t before_{};
    std::atomic<bool> done_{false};
    std::thread thread_;
};

}  // namespace autotrim
