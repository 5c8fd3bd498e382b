#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "host/IDmBaseObj.h"

namespace fake_host {

/// Implements the six operations of IDmBaseObj for a fake object that lives on the heap, starts
/// with one reference, and counts itself in `live` for as long as it exists.
template <typename Interface>
class Counted : public Interface {
public:
    explicit Counted(std::atomic<int>& live) : live_(live) { ++live_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    std::uint32_t addRef() override { return ++references_; }

    std::uint32_t release() override {
        const std::uint32_t left = --references_;
        if (left == 0) delete this;
        return left;
    }

    std::uint32_t refCount() const override { return references_; }
    KOR::IDmDestroyObserver* getDestroyObserver() const override { return observer_; }
    void setDestroyObserver(KOR::IDmDestroyObserver* observer) override { observer_ = observer; }
    void* queryInterface(const char*) override { return nullptr; }

protected:
    virtual ~Counted() { --live_; }

private:
    std::atomic<int>& live_;
    std::atomic<std::uint32_t> references_{1};
    KOR::IDmDestroyObserver* observer_ = nullptr;
};

struct ReleaseObject {
    template <typename Object>
    void operator()(Object* object) const {
        object->release();
    }
};

/// One reference on an object of the contract, given back at the end of the scope.
template <typename Object>
using Owned = std::unique_ptr<Object, ReleaseObject>;

}  // namespace fake_host
