#pragma once

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

namespace autotrim {

/// Has SIGINT and SIGTERM end the process at once with exitInterrupted, save during the work: then
/// the first of them becomes a call on a thread of its own, where everything is allowed.
///
/// To be made before any other thread: the signals are blocked on the thread that makes it, and so
/// on all that come after.
class InterruptWatch {
public:
    /// `onInterrupt` is what the first signal during the work calls.
    explicit InterruptWatch(std::function<void()> onInterrupt);
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    /// Lets the signals act again as before.
    ~InterruptWatch();

    /// Marks where the work begins and ends. Outside, opening and writing files may block for ever,
    /// which nothing but the end of the process can break off.
    void beginWork() { working_ = true; }
    void endWork() { working_ = false; }

private:
    void watch();

    std::function<void()> onInterrupt_;
    sigset_t signals_{};
    sigset_t before_{};
    std::atomic<bool> working_{false};
    std::atomic<bool> done_{false};
    std::thread thread_;
};

}  // namespace autotrim
