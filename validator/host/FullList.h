#pragma once

#include <cstddef>
#include <new>
#include <vector>

#include "host/lists.h"

namespace validator {

/// A list of pointers of our own that takes so many elements and no more, and owns them. Lives on
/// the stack: references on it are counted, but end nothing.
class FullList final : public KOR::IKORVoidPtrList {
public:
    explicit FullList(std::size_t room) : room_(room) { elements_.reserve(room); }
    FullList(const FullList&) = delete;
    FullList& operator=(const FullList&) = delete;
    ~FullList() {
        for (void* const element : elements_)
            ::operator delete(element);
    }

    const std::vector<void*>& elements() const { return elements_; }

    std::uint32_t addRef() override { return ++references_; }
    std::uint32_t release() override { return --references_; }
    std::uint32_t refCount() const override { return references_; }
    KOR::IDmDestroyObserver* getDestroyObserver() const override { return nullptr; }
    void setDestroyObserver(KOR::IDmDestroyObserver*) override {}
    void* queryInterface(const char*) override { return nullptr; }
    std::int64_t count() const override { return static_cast<std::int64_t>(elements_.size()); }
    void* at(std::int64_t index) const override {
        return index >= 0 && index < count() ? elements_[static_cast<std::size_t>(index)] : nullptr;
    }
    KOR::Status append(void* element) override {
        if (elements_.size() == room_) return KOR::statusFailed;
        elements_.push_back(element);
        return KOR::statusOk;
    }

private:
    const std::size_t room_;
    std::vector<void*> elements_;
    std::uint32_t references_ = 1;
};

}  // namespace validator
