#pragma once

#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace validator {

/// Calls `action` with 0, 1 ... on as many threads at once and waits for them. A Failure or Skip
/// that one of them throws goes on here.
template <typename Action>
void onThreads(std::size_t count, Action action) {
    std::mutex mutex;
    std::exception_ptr problem;
    std::vector<std::thread> threads;
    for (std::size_t n = 0; n < count; ++n) {
        threads.emplace_back([&, n] {
            try {
                action(n);
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
