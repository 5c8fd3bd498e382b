#include "autotrim/JointProgress.h"

#include <algorithm>
#include <utility>

namespace autotrim {

JointProgress::JointProgress(const std::vector<std::int64_t>& work, Show show)
    : show_(std::move(show)) {
    // The least there is keeps a run without work from counting for nothing where all are so.
    for (const std::int64_t each : work)
        runs_.push_back({std::max<std::int64_t>(each, 1), 0, std::nullopt});
}

void JointProgress::report(std::size_t run, std::size_t file, int percent) {
    const std::lock_guard lock(mutex_);
    runs_[run].file = file;
    runs_[run].percent = percent;
    show_(latestFile(), this->percent());
}

void JointProgress::end(std::size_t run) {
    const std::lock_guard lock(mutex_);
    runs_[run].file.reset();
}

/// There is one while a run reports.
std::size_t JointProgress::latestFile() const {
    // An unset one is below all others.
    return *std::max_element(runs_.begin(), runs_.end(), [](const Run& a, const Run& b) {
                return a.file < b.file;
            })->file;
}

int JointProgress::percent() const {
    std::int64_t done = 0;
    std::int64_t all = 0;
    for (const Run& run : runs_) {
        done += run.work * run.percent;
        all += run.work;
    }
    return static_cast<int>(done / all);
}

}  // namespace autotrim
