#include "reference_host/tasks/inParallel.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace reference_host {
namespace {

/// What the threads of all parts and the one that waits for them know of each other.
class Crew {
public:
    Crew(std::size_t parts, const std::stop_source& stop) : atWork_(parts), stop_(stop) {}

    /// What the thread of one part does.
    void run(std::size_t part, const PartOfWork& work) {
        try {
            work(part, [this] { step(); });
        } catch (...) {
            fail(std::current_exception());
        }
        const std::scoped_lock lock(mutex_);
        --atWork_;
        changed_.notify_one();
    }

    /// Tells of the steps until all parts have ended.
    void follow(const std::function<void(std::size_t)>& onSteps) {
        std::size_t told = 0;
        std::unique_lock lock(mutex_);
        while (atWork_ > 0 || steps_ > told) {
            changed_.wait(lock, [&] { return atWork_ == 0 || steps_ > told; });
            if (steps_ == told) continue;
            told = steps_;
            lock.unlock();
            onSteps(told);
            lock.lock();
        }
    }

    /// Keeps the first failure, and has the others end.
    void fail(std::exception_ptr failure) {
        {
            const std::scoped_lock lock(mutex_);
            if (!failure_) failure_ = std::move(failure);
        }
        stop_.request_stop();
    }

    /// To be called when all threads have ended.
    void rethrowFailure() const {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    void step() {
        const std::scoped_lock lock(mutex_);
        ++steps_;
        changed_.notify_one();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t atWork_;
    std::size_t steps_ = 0;
    std::exception_ptr failure_;
    const std::stop_source& stop_;
};

}  // namespace

void inParallel(std::size_t parts, const std::stop_source& stop, const PartOfWork& work,
                const std::function<void(std::size_t steps)>& onSteps) {
    Crew crew(parts, stop);
    {
        std::vector<std::jthread> threads;
        try {
            for (std::size_t part = 0; part < parts; ++part)
                threads.emplace_back([&crew, &work, part] { crew.run(part, work); });
            crew.follow(onSteps);
        } catch (...) {
            crew.fail(std::current_exception());
        }
    }
    crew.rethrowFailure();
}

}  // namespace reference_host
