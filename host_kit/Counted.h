#pragma once

#include <atomic>
#include <cstdint>

#include "host/IDmBaseObj.h"

namespace host_kit {

/// Gives the interface `Interface` its reference counting.
///
/// An object starts with one reference, which its creator owns, and deletes itself with the last
/// one. Any thread.
template <typename Interface>
class Counted : public Interface {
public:
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    std::uint32_t addRef() override {
        // A plain increment would wake an object up again whose last reference has just gone.
        std::uint32_t count = count_.load();
        while (count != 0 && !count_.compare_exchange_weak(count, count + 1)) {
        }
        return count == 0 ? 0 : count + 1;
    }

    std::uint32_t release() override {
        const std::uint32_t left = --count_;
        if (left == 0) {
            if (KOR::IDmDestroyObserver* observer = observer_.load()) observer->objectDestroyed();
            delete this;
        }
        return left;
    }

    std::uint32_t refCount() const override { return count_.load(); }

    KOR::IDmDestroyObserver* getDestroyObserver() const override { return observer_.load(); }

    void setDestroyObserver(KOR::IDmDestroyObserver* observer) override {
        observer_.store(observer);
    }

protected:
    Counted() = default;
    virtual ~Counted() = default;

private:
    std::atomic<std::uint32_t> count_{1};
    std::atomic<KOR::IDmDestroyObserver*> observer_{nullptr};
};

}  // namespace host_kit
