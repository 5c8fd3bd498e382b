#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "fake_host/FakeHost.h"
#include "fake_host/paths.h"
#include "host/files.h"

namespace KOR {

Path::Path(const char* text) : text_(text == nullptr ? "" : text) {}
Path::Path(std::string text) : text_(std::move(text)) {}

const std::string& Path::string() const {
    return text_;
}

bool PathUtil::exists(const Path& path) {
    if (fake_host::host().faults.nothingExists) return false;
    std::error_code error;
    return std::filesystem::exists(fake_host::pathOf(path.string()), error);
}

Path PathUtil::join(const Path& base, const Path& tail) {
    if (base.string().empty()) return tail;
    if (tail.string().empty()) return base;
    std::string text = base.string();
    while (!text.empty() && text.back() == '/')
        text.pop_back();
    const std::size_t start = tail.string().find_first_not_of('/');
    return Path(text + "/" + (start == std::string::npos ? "" : tail.string().substr(start)));
}

bool DirUtil::create(const Path& path) {
    ++fake_host::host().directoriesMade;
    if (fake_host::host().faults.directoriesFail) return false;
    std::error_code error;
    const std::filesystem::path directory = fake_host::pathOf(path.string());
    std::filesystem::create_directories(directory, error);
    return std::filesystem::is_directory(directory, error);
}

bool FileUtil::remove(const Path& path) {
    if (fake_host::host().faults.removalsFail) return false;
    std::error_code error;
    const std::filesystem::path file = fake_host::pathOf(path.string());
    if (std::filesystem::is_directory(file, error)) return false;
    return std::filesystem::remove(file, error);
}

std::vector<std::string> StringUtil::split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    parts.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), separator)) + 1);
    std::size_t begin = 0;
    while (true) {
        const std::size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::string::npos) return parts;
        begin = end + 1;
    }
}

}  // namespace KOR

std::size_t kor_strlen(const char* text) {
    return text == nullptr ? 0 : std::strlen(text);
}
