#include "autotrim/Jobs.h"

#include <algorithm>
#include <future>
#include <utility>

#include "autotrim/AnalysisRun.h"
#include "autotrim/Configuration.h"
#include "autotrim/RunMonitor.h"

namespace autotrim {

Jobs::Jobs(const ComponentLibrary& library, const Options& options, Materials& materials,
           std::size_t count)
    : options_(options), materials_(materials), work_(materials.work(options)) {
    for (Share& share : dealOut(work_, count)) {
        Job& job = jobs_.emplace_back(Job{std::move(share), library.create()});
        configure(*job.component, library, options);
        materials.insertInto(*job.component, job.share);
    }
}

void Jobs::run(const std::stop_token& interruption, ProgressDisplay& display) {
    JointProgress progress = progressOn(display);
    runAll(interruption, progress);
    for (const Job& job : jobs_)
        materials_.takeResults(*job.component, job.share, job.end, options_);
}

bool Jobs::interrupted() const {
    return std::any_of(jobs_.begin(), jobs_.end(),
                       [](const Job& job) { return job.end == RunEnd::interrupted; });
}

JointProgress Jobs::progressOn(ProgressDisplay& display) const {
    std::vector<std::int64_t> ofShares;
    for (const Job& job : jobs_) {
        std::int64_t& sum = ofShares.emplace_back(0);
        for (const std::size_t material : job.share)
            sum += work_[material];
    }
    return {ofShares, [this, &display](std::size_t file, int percent) {
                display.show({options_.files[file], file + 1, options_.files.size(), percent});
            }};
}

/// The first one runs on this thread, so that a single one needs no other.
void Jobs::runAll(const std::stop_token& interruption, JointProgress& progress) {
    const std::stop_callback interrupt(interruption, [this] { ending_.request_stop(); });
    std::vector<std::future<void>> others;
    try {
        for (std::size_t i = 1; i < jobs_.size(); ++i) {
            others.push_back(
                std::async(std::launch::async, [this, i, &progress] { runOne(i, progress); }));
        }
        runOne(0, progress);
        for (std::future<void>& other : others)
            other.get();
    } catch (...) {
        // They are waited for on the way out.
        ending_.request_stop();
        throw;
    }
}

void Jobs::runOne(std::size_t index, JointProgress& progress) {
    Job& job = jobs_[index];
    if (ending_.stop_requested()) {
        job.end = RunEnd::interrupted;
        return;
    }
    if (job.share.empty()) return;
    RunMonitor monitor;
    const std::stop_callback interrupt(ending_.get_token(), [&monitor] { monitor.interrupt(); });
    job.end = runToEnd(*job.component, monitor, [&](int percent) {
        progress.report(index, materials_.reached(job.share), percent);
    });
    progress.end(index);
}

}  // namespace autotrim
