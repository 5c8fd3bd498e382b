#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

namespace host_kit {

/// The threads on which tasks run: one for each run, ended with it.
///
/// A run that is stopped is given up, not waited for: its thread comes to its end by itself. No
/// thread is left behind, though: those that have ended are joined when the next one begins, and
/// all of them when the process ends or the library is unloaded. By then, libraries that runs use
/// may have taken their own things down: endAll() is for a program that ends while runs may go on.
/// Any thread.
class Workers {
public:
    static Workers& instance();

    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// Runs `work` on a thread of its own. `run` is asked to stop when the process ends. Throws
    /// std::system_error where no thread can be had.
    void launch(std::stop_source run, std::function<void()> work);

    /// Stops all runs and waits until they have ended, save one that calls this itself.
    void endAll();

private:
    struct Worker {
        std::stop_source run;
        std::thread thread;
    };

    Workers() = default;
    ~Workers();

    /// The last thing that a thread does: from now on it can be joined without waiting.
    void retire(std::list<Worker>::iterator worker);

    std::mutex mutex_;
    std::condition_variable retired_;
    std::list<Worker> running_;
    std::list<Worker> ended_;
};

}  // namespace host_kit
