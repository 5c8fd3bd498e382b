#include "validator/check/onThreads.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace validator {
namespace {

/// Holds threads back until all are there. std::latch would do, but that of libstdc++ 12 can miss
/// the last arrival on Windows, and wait for ever.
class Meeting {
public:
    explicit Meeting(int expected) : missing_(expected) {}

    void arriveAndWait() {
        std::unique_lock lock(mutex_);
        if (--missing_ == 0) changed_.notify_all();
        changed_.wait(lock, [this] { return missing_ == 0; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int missing_;
};

}  // namespace

void onThreads(const std::function<void(int thread)>& action) {
    Meeting start(threadCount);
    std::mutex mutex;
    std::exception_ptr problem;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            start.arriveAndWait();
            try {
                action(i);
            } catch (...) {
                const std::scoped_lock lock(mutex);
                problem = std::current_exception();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    if (problem) std::rethrow_exception(problem);
}

}  // namespace validator
