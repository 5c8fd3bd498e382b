#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "host/IDmBaseObj.h"

namespace minimal_host {

/// Gives `Interface` its reference counting: one reference at first, and the last deletes.
template <typename Interface>
class Counted : public Interface {
public:
    std::uint32_t addRef() override {
        std::uint32_t count = count_;
        while (count != 0 && !count_.compare_exchange_weak(count, count + 1)) {
        }
        return count == 0 ? 0 : count + 1;  // the dead stay dead
    }
    std::uint32_t release() override {
        const std::uint32_t left = --count_;
        if (left != 0) return left;
        if (KOR::IDmDestroyObserver* const observer = observer_) observer->objectDestroyed();
        delete this;
        return 0;
    }
    std::uint32_t refCount() const override { return count_; }
    KOR::IDmDestroyObserver* getDestroyObserver() const override { return observer_; }
    void setDestroyObserver(KOR::IDmDestroyObserver* observer) override { observer_ = observer; }
    void* queryInterface(const char* name) override {
        return isName(name, "IDmBaseObj") ? static_cast<KOR::IDmBaseObj*>(this) : nullptr;
    }

protected:
    virtual ~Counted() = default;
    static bool isName(const char* name, std::string_view wanted) { return name && name == wanted; }

private:
    std::atomic<std::uint32_t> count_ = 1;
    std::atomic<KOR::IDmDestroyObserver*> observer_ = nullptr;
};

}  // namespace minimal_host
