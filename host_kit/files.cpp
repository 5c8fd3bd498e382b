#include "host/files.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace {

/// Empty, which is no file, where a system cannot have it.
std::filesystem::path pathOf(const KOR::Path& path) {
    const std::string& utf8 = path.string();
    try {
        return std::u8string(utf8.begin(), utf8.end());
    } catch (const std::system_error&) {
        return {};
    }
}

}  // namespace

namespace KOR {

Path::Path(const char* text) : text_(text == nullptr ? "" : text) {}

Path::Path(std::string text) : text_(std::move(text)) {}

const std::string& Path::string() const {
    return text_;
}

namespace PathUtil {

bool exists(const Path& path) {
    std::error_code error;
    return std::filesystem::exists(pathOf(path), error);
}

Path join(const Path& base, const Path& tail) {
    if (base.string().empty()) return tail;
    if (tail.string().empty()) return base;
    const std::size_t baseEnd = base.string().find_last_not_of('/') + 1;
    const std::size_t tailBegin =
        std::min(tail.string().find_first_not_of('/'), tail.string().size());
    return Path(base.string().substr(0, baseEnd) + "/" + tail.string().substr(tailBegin));
}

}  // namespace PathUtil

namespace DirUtil {

bool create(const Path& path) {
    // What stands there afterwards decides: another thread or process may have been faster.
    std::error_code error;
    const std::filesystem::path directory = pathOf(path);
    std::filesystem::create_directories(directory, error);
    return std::filesystem::is_directory(directory, error);
}

}  // namespace DirUtil

namespace FileUtil {

bool remove(const Path& path) {
    std::error_code error;
    const std::filesystem::path file = pathOf(path);
    if (std::filesystem::is_directory(std::filesystem::symlink_status(file, error))) return false;
    return std::filesystem::remove(file, error);
}

}  // namespace FileUtil

namespace StringUtil {

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    parts.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), separator)) + 1);
    std::size_t begin = 0;
    for (std::size_t end = text.find(separator); end != std::string::npos;
         end = text.find(separator, begin)) {
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

}  // namespace StringUtil
}  // namespace KOR

std::size_t kor_strlen(const char* text) {
    return text == nullptr ? 0 : std::strlen(text);
}
