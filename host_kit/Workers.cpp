#include "host_kit/Workers.h"

#include <utility>

namespace host_kit {

Workers& Workers::instance() {
    static Workers workers;
    return workers;
}

void Workers::launch(std::stop_source run, std::function<void()> work) {
    std::list<Worker> ended;
    {
        const std::scoped_lock lock(mutex_);
        const auto worker = running_.emplace(running_.end());
        worker->run = std::move(run);
        try {
            // The thread cannot retire before its entry is complete: that takes the lock.
            worker->thread = std::thread([this, worker, work = std::move(work)] {
                work();
                retire(worker);
            });
        } catch (...) {
            running_.erase(worker);
            throw;
        }
        ended.swap(ended_);
    }
    for (Worker& worker : ended)
        worker.thread.join();
}

void Workers::retire(std::list<Worker>::iterator worker) {
    const std::scoped_lock lock(mutex_);
    ended_.splice(ended_.end(), running_, worker);
    retired_.notify_all();
}

void Workers::endAll() {
    std::list<Worker> ended;
    {
        std::unique_lock lock(mutex_);
        std::size_t own = 0;
        for (Worker& worker : running_) {
            worker.run.request_stop();
            if (worker.thread.get_id() == std::this_thread::get_id()) own = 1;
        }
        retired_.wait(lock, [&] { return running_.size() <= own; });
        ended.swap(ended_);
    }
    for (Worker& worker : ended)
        worker.thread.join();
}

Workers::~Workers() {
    endAll();
    // A listener that ends the process does so on one of these threads, which never retires.
    for (Worker& worker : running_)
        worker.thread.detach();
}

}  // namespace host_kit
