#include <cerrno>
#include <system_error>

#include <unistd.h>

#include "reference_host/ReferenceHost.h"
#include "reference_host/cache/KeptMaterial.h"
#include "reference_host/cache/names.h"

namespace reference_host {
namespace {

namespace fs = std::filesystem;

/// Deletes a file. False where that fails; one that is gone already is none of ours any more.
bool removeFile(const fs::path& file, ClearedCache& cleared) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    if (fs::remove(file, error)) cleared.sizeBytes += size;
    if (error) cleared.failures.push_back(cache::failureLine(file, error));
    return !error;
}

/// Deletes a directory if it is empty. False where that fails although it is.
bool removeEmpty(const fs::path& directory, ClearedCache& cleared) {
    if (::rmdir(directory.c_str()) == 0) return true;
    const std::error_code error(errno, std::generic_category());
    // Not there, a link, or what others have put there.
    for (const std::errc left : {std::errc::no_such_file_or_directory, std::errc::not_a_directory,
                                 std::errc::directory_not_empty, std::errc::file_exists}) {
        if (error == left) return true;
    }
    cleared.failures.push_back(cache::failureLine(directory, error));
    return false;
}

void clear(const cache::KeptMaterial& kept, ClearedCache& cleared) {
    bool isGone = kept.failures.empty();
    cleared.failures.insert(cleared.failures.end(), kept.failures.begin(), kept.failures.end());
    for (const fs::path& file : kept.files)
        isGone = removeFile(file, cleared) && isGone;
    isGone = isGone && removeEmpty(kept.directory / cache::analysisName, cleared) &&
             removeEmpty(kept.directory, cleared);
    if (isGone && !kept.files.empty()) ++cleared.materials;
}

}  // namespace

ClearedCache clearCache(const fs::path& cacheRoot) {
    ClearedCache cleared;
    for (const cache::KeptMaterial& kept : cache::keptMaterials(cacheRoot))
        clear(kept, cleared);
    return cleared;
}

}  // namespace reference_host
