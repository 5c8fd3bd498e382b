#include "validator/check/onThreads.h"

#include <latch>
#include <thread>
#include <vector>

namespace validator {

void onThreads(const std::function<void(int thread)>& action) {
    std::latch areReady(threadCount);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            areReady.arrive_and_wait();
            action(i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace validator
