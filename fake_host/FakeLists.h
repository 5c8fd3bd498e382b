#pragma once

#include <cstdint>
#include <new>
#include <type_traits>
#include <vector>

#include "fake_host/Counted.h"
#include "fake_host/FakeHost.h"
#include "host/lists.h"

namespace fake_host {

/// A list of any of the four kinds. The owning one frees what its elements point to.
template <typename Element>
class FakeList final : public Counted<KOR::IKORList<Element>> {
public:
    explicit FakeList(Product kind)
        : Counted<KOR::IKORList<Element>>(host().live.lists), kind_(kind) {}

    std::int64_t count() const override { return static_cast<std::int64_t>(elements_.size()); }

    Element at(std::int64_t index) const override {
        asked_.push_back(index);
        if (index < 0 || index >= count()) return Element{};
        return elements_[static_cast<std::size_t>(index)];
    }

    KOR::Status append(Element element) override {
        if (host().faults.appendsFail(kind_)) return KOR::statusFailed;
        elements_.push_back(element);
        return KOR::statusOk;
    }

    const std::vector<Element>& elements() const { return elements_; }

    /// The indices that at() was asked for, in order.
    const std::vector<std::int64_t>& asked() const { return asked_; }

private:
    ~FakeList() override {
        if constexpr (std::is_pointer_v<Element>) {
            if (kind_ != Product::owningList) return;
            for (const Element element : elements_)
                ::operator delete(element);
        }
    }

    Product kind_;
    std::vector<Element> elements_;
    mutable std::vector<std::int64_t> asked_;
};

}  // namespace fake_host
