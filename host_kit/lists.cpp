#include "host/lists.h"

#include <exception>
#include <new>
#include <string_view>
#include <vector>

#include "host_kit/Counted.h"

namespace host_kit {
namespace {

enum class Elements { borrowed, owned };

template <typename Element, Elements elements = Elements::borrowed>
class List final : public Counted<KOR::IKORList<Element>> {
public:
    void* queryInterface(const char* name) override {
        const bool known = name != nullptr && std::string_view(name) == "IDmBaseObj";
        return known ? static_cast<KOR::IDmBaseObj*>(this) : nullptr;
    }

    std::int64_t count() const override { return static_cast<std::int64_t>(elements_.size()); }

    Element at(std::int64_t index) const override {
        const bool inside = index >= 0 && index < count();
        return inside ? elements_[static_cast<std::size_t>(index)] : Element{};
    }

    KOR::Status append(Element element) override {
        try {
            elements_.push_back(element);
        } catch (const std::exception&) {
            return KOR::statusFailed;
        }
        return KOR::statusOk;
    }

private:
    ~List() override {
        if constexpr (elements == Elements::owned) {
            for (void* element : elements_)
                ::operator delete(element);
        }
    }

    std::vector<Element> elements_;
};

}  // namespace
}  // namespace host_kit

KOR::IKORIntList* createKORIntList() {
    return new (std::nothrow) host_kit::List<std::int32_t>;
}

KOR::IKORLonglongList* createKORLonglongList() {
    return new (std::nothrow) host_kit::List<std::int64_t>;
}

KOR::IKORVoidPtrList* createKORVoidPtrList() {
    return new (std::nothrow) host_kit::List<void*>;
}

KOR::IKORVoidPtrList* createKORAutoVoidPtrList() {
    return new (std::nothrow) host_kit::List<void*, host_kit::Elements::owned>;
}
