#include "autotrim/Cache.h"

#include <string>

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

int list(const std::filesystem::path& cacheRoot) {
    const auto materials = reference_host::listCache(cacheRoot);
    if (materials.empty()) {
        tellOfEmptyCache(cacheRoot);
    } else {
        writeToStandardOutput(cacheTable(materials));
    }
    return exitAllDone;
}

int clear(const std::filesystem::path& cacheRoot) {
    const auto cleared = reference_host::clearCache(cacheRoot);
    for (const std::string& failure : cleared.failures)
        say(failure);
    if (cleared.materials > 0) {
        writeToStandardOutput("deleted what was kept of " +
                              sumOfKept(cleared.materials, cleared.sizeBytes) + "\n");
    } else if (cleared.failures.empty()) {
        tellOfEmptyCache(cacheRoot);
    }
    return cleared.failures.empty() ? exitAllDone : exitSomeFailed;
}

}  // namespace

int runCacheCommand(const CacheCommand& command) {
    return command.action == CacheCommand::Action::list ? list(command.cacheRoot)
                                                        : clear(command.cacheRoot);
}

}  // namespace autotrim
