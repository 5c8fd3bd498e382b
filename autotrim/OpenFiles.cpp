#include "autotrim/OpenFiles.h"

#include <algorithm>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "autotrim/Outcome.h"
#include "autotrim/Say.h"

namespace autotrim {
namespace {

/// Hands the files out to the threads that open them, and takes back what they have found.
class Opening {
public:
    Opening(const Options& options, const std::stop_token& interruption, ProgressDisplay& display)
        : options_(options),
          interruption_(interruption),
          display_(display),
          opened_(options.files.size()) {}

    /// Opens one file after the other, until none is left.
    void work() {
        while (const std::optional<std::size_t> index = next()) {
            const std::string& file = options_.files[*index];
            takeIn(*index, interruption_.stop_requested()
                               ? OpenedFile{file, interruptedReason, {}, nullptr}
                               : openFile(file, options_.cacheRoot, interruption_));
        }
    }

    std::vector<OpenedFile> take() && {
        std::vector<OpenedFile> files;
        for (std::optional<OpenedFile>& file : opened_)
            files.push_back(*std::move(file));
        return files;
    }

private:
    std::optional<std::size_t> next() {
        const std::lock_guard lock(mutex_);
        if (next_ == opened_.size()) return std::nullopt;
        if (!interruption_.stop_requested()) {
            display_.showOpening({options_.files[next_], next_ + 1, opened_.size(), 0});
        }
        return next_++;
    }

    void takeIn(std::size_t index, OpenedFile file) {
        const std::lock_guard lock(mutex_);
        opened_[index] = std::move(file);
        for (; told_ < opened_.size() && opened_[told_]; ++told_)
            tell(*opened_[told_]);
    }

    void tell(const OpenedFile& file) {
        if (file.error.empty() || file.error == interruptedReason) return;
        display_.clear();
        say(file.name, file.error);
    }

    const Options& options_;
    const std::stop_token& interruption_;
    ProgressDisplay& display_;
    std::mutex mutex_;
    std::vector<std::optional<OpenedFile>> opened_;
    std::size_t next_ = 0;
    std::size_t told_ = 0;  ///< how many the user has been told of: the first ones
};

}  // namespace

std::vector<OpenedFile> openFiles(const Options& options, std::size_t jobs,
                                  const std::stop_token& interruption, ProgressDisplay& display) {
    Opening opening(options, interruption, display);
    {
        std::vector<std::future<void>> others;
        for (std::size_t i = 1; i < std::min(jobs, options.files.size()); ++i)
            others.push_back(std::async(std::launch::async, [&opening] { opening.work(); }));
        opening.work();
        for (std::future<void>& other : others)
            other.get();
    }
    return std::move(opening).take();
}

}  // namespace autotrim
