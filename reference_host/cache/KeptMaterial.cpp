#include "reference_host/cache/KeptMaterial.h"

#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "reference_host/cache/contentKey.h"
#include "reference_host/cache/names.h"

namespace reference_host::cache {
namespace {

namespace fs = std::filesystem;

/// Returns what stands in `directory`, as far as it can be read.
std::vector<fs::path> entriesOf(const fs::path& directory, std::error_code& error) {
    std::vector<fs::path> entries;
    fs::directory_iterator entry(directory, error);
    while (!error && entry != fs::directory_iterator()) {
        entries.push_back(entry->path());
        entry.increment(error);
    }
    return entries;
}

bool isOfFacts(std::string_view name) {
    return name == factsName ||
           (name.starts_with(unfinishedFactsName) && name.size() == unfinishedNameBytes);
}

/// Looks at one directory.
class Look {
public:
    explicit Look(const fs::path& directory) { kept_.directory = directory; }

    KeptMaterial take() && {
        std::error_code error;
        for (const fs::path& entry : entriesOf(kept_.directory, error)) {
            if (isOfFacts(entry.filename().string()) && is(entry, fs::file_type::regular)) {
                kept_.files.push_back(entry);
            }
        }
        note(kept_.directory, error);
        if (error) return std::move(kept_);
        const fs::path analysis = kept_.directory / analysisName;
        if (is(analysis, fs::file_type::directory) &&
            is(analysis / resultName, fs::file_type::regular)) {
            kept_.files.push_back(analysis / resultName);
            kept_.hasResult = true;
        }
        return std::move(kept_);
    }

private:
    bool is(const fs::path& path, fs::file_type type) {
        std::error_code error;
        const fs::file_type found = fs::symlink_status(path, error).type();
        note(path, error);
        return found == type;
    }

    /// What is not there is no failure: others may be clearing, too.
    void note(const fs::path& path, const std::error_code& error) {
        if (error && error != std::errc::no_such_file_or_directory) {
            kept_.failures.push_back(failureLine(path, error));
        }
    }

    KeptMaterial kept_;
};

}  // namespace

std::vector<KeptMaterial> keptMaterials(const fs::path& root) {
    std::error_code error;
    const std::vector<fs::path> entries = entriesOf(root, error);
    if (error == std::errc::no_such_file_or_directory) return {};
    if (error) {
        throw std::runtime_error("the cache " + root.string() +
                                 " cannot be read: " + error.message());
    }
    std::vector<KeptMaterial> materials;
    for (const fs::path& entry : entries) {
        std::error_code gone;
        if (isContentKey(entry.filename().string()) &&
            fs::is_directory(fs::symlink_status(entry, gone))) {
            materials.push_back(Look(entry).take());
        }
    }
    return materials;
}

std::string failureLine(const fs::path& path, const std::error_code& error) {
    return path.string() + ": " + error.message();
}

}  // namespace reference_host::cache
