#include "tests/autotrim/CachedFootage.h"

#include <algorithm>

namespace autotrim {

using std::filesystem::path;

path CachedFootage::copyOf(const std::string& clip, const std::string& name) const {
    const path original = path(AUTOTRIM_CLIPS) / clip;
    std::filesystem::copy_file(original, file(name));
    std::filesystem::last_write_time(file(name), std::filesystem::last_write_time(original));
    return file(name);
}

Json CachedFootage::analyse(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all = {"--cache", cache().string()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return analysed(all);
}

path CachedFootage::onlyResultFile() const {
    const std::vector<path> found = resultFilesIn(cache());
    return found.size() == 1 ? found[0] : path();
}

std::string CachedFootage::warningOfCache() const {
    return "autotrim: " + cache().string() +
           ": warning: results could not be kept in this directory\n";
}

std::vector<path> CachedFootage::kept() const {
    std::vector<path> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(cache())) {
        if (entry.symlink_status().type() != std::filesystem::file_type::directory) {
            found.push_back(entry.path());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace autotrim
