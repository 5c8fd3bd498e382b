#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace KOR {

/// A path as text, UTF-8. Host and component share one C++ standard library.
class Path {
public:
    /// Takes the text as it is; null counts as empty.
    explicit Path(const char* text);
    explicit Path(std::string text);

    /// Returns the text.
    const std::string& string() const;

private:
    std::string text_;
};

/// The functions below may be called on any thread; none of them throws for a file that is missing
/// or may not be touched.
namespace PathUtil {

/// Says whether something stands at `path`, a directory or a file of any kind.
bool exists(const Path& path);

/// Puts `tail` behind `base` with exactly one "/" between them, whether or not `tail` begins with
/// one: "/cache" and "/analysis" give "/cache/analysis". An empty side gives the other one.
Path join(const Path& base, const Path& tail);

}  // namespace PathUtil

namespace DirUtil {

/// Makes the directory and those above it. True when it stands there afterwards.
bool create(const Path& path);

}  // namespace DirUtil

namespace FileUtil {

/// Deletes the file. True when it was there and is gone. A directory is not deleted.
bool remove(const Path& path);

}  // namespace FileUtil

namespace StringUtil {

/// Splits `text` at every `separator`; empty parts are kept, so "a,,b" gives three parts and the
/// empty text gives one, which is empty.
std::vector<std::string> split(const std::string& text, char separator);

}  // namespace StringUtil

}  // namespace KOR

extern "C" {

/// Returns the number of bytes before the terminating zero; 0 for null.
std::size_t kor_strlen(const char* text);
}
