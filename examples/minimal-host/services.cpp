// The small services: lists, no log, files and geometry.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <new>

#include "Counted.h"
#include "host/files.h"
#include "host/geometry.h"
#include "host/lists.h"
#include "host/logger.h"

namespace minimal_host {
namespace {

template <typename Element, bool ownsElements = false>
class List final : public Counted<KOR::IKORList<Element>> {
public:
    std::int64_t count() const override { return static_cast<std::int64_t>(elements_.size()); }
    Element at(std::int64_t index) const override {
        return index >= 0 && index < count() ? elements_[static_cast<std::size_t>(index)]
                                             : Element();
    }
    KOR::Status append(Element element) override try {
        elements_.push_back(element);
        return KOR::statusOk;
    } catch (const std::exception&) {
        return KOR::statusFailed;
    }

private:
    ~List() override {
        if constexpr (ownsElements) {
            for (void* const element : elements_)
                ::operator delete(element);
        }
    }

    std::vector<Element> elements_;
};

}  // namespace
}  // namespace minimal_host

KOR::IKORIntList* createKORIntList() {
    return new (std::nothrow) minimal_host::List<std::int32_t>;
}
KOR::IKORLonglongList* createKORLonglongList() {
    return new (std::nothrow) minimal_host::List<std::int64_t>;
}
KOR::IKORVoidPtrList* createKORVoidPtrList() {
    return new (std::nothrow) minimal_host::List<void*>;
}
KOR::IKORVoidPtrList* createKORAutoVoidPtrList() {
    return new (std::nothrow) minimal_host::List<void*, true>;
}

KOR::KorLoggerWrapper* loggerWrapper(std::int32_t) {
    return nullptr;  // this host has no log
}

std::size_t kor_strlen(const char* text) {
    return text == nullptr ? 0 : std::strlen(text);
}

namespace KOR {

Path::Path(const char* text) : text_(text == nullptr ? "" : text) {}
Path::Path(std::string text) : text_(std::move(text)) {}
const std::string& Path::string() const {
    return text_;
}

bool PathUtil::exists(const Path& path) {
    std::error_code error;
    return std::filesystem::exists(path.string(), error);
}
Path PathUtil::join(const Path& base, const Path& tail) {
    if (base.string().empty() || tail.string().empty()) return Path(base.string() + tail.string());
    const std::size_t end = base.string().find_last_not_of('/') + 1;
    const std::size_t begin = std::min(tail.string().find_first_not_of('/'), tail.string().size());
    return Path(base.string().substr(0, end) + "/" + tail.string().substr(begin));
}
bool DirUtil::create(const Path& path) {
    std::error_code error;
    std::filesystem::create_directories(path.string(), error);
    return std::filesystem::is_directory(path.string(), error);  // whoever made it
}
bool FileUtil::remove(const Path& path) {
    std::error_code error;
    const auto status = std::filesystem::symlink_status(path.string(), error);
    return !std::filesystem::is_directory(status) && std::filesystem::remove(path.string(), error);
}
std::vector<std::string> StringUtil::split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char letter : text) {
        if (letter == separator)
            parts.emplace_back();
        else
            parts.back() += letter;
    }
    return parts;
}

double width(const KorRect& rect) {
    return rect.width;
}
double height(const KorRect& rect) {
    return rect.height;
}
KorPoint centerPoint(const KorRect& rect) {
    return {rect.x + rect.width / 2, rect.y + rect.height / 2};
}
std::int32_t pointInRect(const KorPoint& point, const KorRect& rect) {
    return rect.x <= point.x && point.x <= rect.x + rect.width && rect.y <= point.y &&
           point.y <= rect.y + rect.height;
}

}  // namespace KOR
