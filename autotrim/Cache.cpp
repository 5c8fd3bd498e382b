#include "autotrim/Cache.h"

#include <string>
#include <vector>

#include "autotrim/CacheTable.h"
#include "autotrim/ExitCode.h"
#include "autotrim/Output.h"
#include "autotrim/Say.h"
#include "autotrim/Utf8.h"
#include "reference_host/ReferenceHost.h"

namespace autotrim {
namespace {

void tellOfEmptyCache(const std::filesystem::path& cacheRoot) {
    writeToStandardOutput("nothing is kept in " + printable(cacheRoot.string()) + "\n");
}

void tellFailures(const std::vector<std::string>& failures) {
    for (const std::string& failure : failures)
        say(failure);
}

int exitCodeOf(const std::vector<std::string>& failures) {
    return failures.empty() ? exitAllDone : exitSomeFailed;
}

int list(const std::filesystem::path& cacheRoot) {
    const auto listing = reference_host::listCache(cacheRoot);
    tellFailures(listing.failures);
    if (!listing.materials.empty()) {
        writeToStandardOutput(cacheTable(listing.materials));
    } else if (listing.failures.empty()) {
        tellOfEmptyCache(cacheRoot);
    }
    return exitCodeOf(listing.failures);
}

int clear(const std::filesystem::path& cacheRoot) {
    const auto cleared = reference_host::clearCache(cacheRoot);
    tellFailures(cleared.failures);
    if (cleared.materials > 0) {
        writeToStandardOutput("deleted what was kept of " +
                              sumOfKept(cleared.materials, cleared.sizeBytes) + "\n");
    } else if (cleared.failures.empty()) {
        tellOfEmptyCache(cacheRoot);
    }
    return exitCodeOf(cleared.failures);
}

}  // namespace

int runCacheCommand(const CacheCommand& command) {
    return command.action == CacheCommand::Action::list ? list(command.cacheRoot)
                                                        : clear(command.cacheRoot);
}

}  // namespace autotrim
