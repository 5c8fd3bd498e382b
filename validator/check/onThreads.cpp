#include "validator/check/onThreads.h"

#include <exception>
#include <latch>
#include <mutex>
#include <thread>
#include <vector>

namespace validator {

void onThreads(const std::function<void(int thread)>& action) {
    std::latch areReady(threadCount);
    std::mutex mutex;
    std::exception_ptr problem;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            areReady.arrive_and_wait();
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
