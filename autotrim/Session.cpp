#include "autotrim/Session.h"

#include <algorithm>
#include <string>
#include <thread>

#include "autotrim/ComponentLibrary.h"
#include "autotrim/Jobs.h"
#include "autotrim/Materials.h"
#include "autotrim/OpenFiles.h"
#include "autotrim/Say.h"

namespace autotrim {
namespace {

/// Each run holds pictures of its own in memory, and more of them than these hardly gain: a single
/// one already uses several cores.
constexpr unsigned mostJobsByDefault = 8;

std::size_t jobsFor(const Options& options) {
    // The number of threads is 0 where it is unknown.
    return options.jobs.value_or(
        std::clamp(std::thread::hardware_concurrency(), 1U, mostJobsByDefault));
}

/// Tells what went wrong in the runs. Files that could not be opened have been named before; those
/// that an interrupt left behind are counted.
void tellTroubles(const Report& report, const Materials& materials, bool interrupted) {
    for (const auto& [file, text] : materials.warnings())
        say(file, "warning: " + text);
    for (const FileReport& file : report.files) {
        const bool opened = file.type.has_value();
        if (opened && !file.error.empty() && file.error != interruptedReason) {
            say(file.file, file.error);
        }
    }
    if (interrupted) say("interrupted");
}

}  // namespace

Report analyse(const Options& options, const std::stop_token& interruption,
               ProgressDisplay& display) {
    const ComponentLibrary library(findComponentLibrary());
    const std::size_t count = jobsFor(options);
    Materials materials(openFiles(options, count, interruption, display));
    Jobs jobs(library, options, materials, count);
    jobs.run(interruption, display);
    display.clear();

    Report report{options.kinds, materials.reports()};
    tellTroubles(report, materials, jobs.interrupted());
    if (!materials.allKept(report.files)) {
        say(options.cacheRoot.string(), "warning: results could not be kept in this directory");
    }
    return report;
}

}  // namespace autotrim
