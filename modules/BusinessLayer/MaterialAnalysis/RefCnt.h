#pragma once

#include <atomic>
#include <cstdint>

#include "host/IDmBaseObj.h"

namespace KOR {

template <typename Tag>
class RefCnt;

/// Reference counting of an object that lives on the heap. The first five operations are those of
/// IDmBaseObj, which the object forwards here. Safe on any thread.
template <>
class RefCnt<void> {
public:
    RefCnt();
    RefCnt(const RefCnt&) = delete;
    RefCnt& operator=(const RefCnt&) = delete;

    virtual std::uint32_t addRef();
    virtual std::uint32_t release();
    virtual std::uint32_t refCount() const;
    virtual IDmDestroyObserver* getDestroyObserver() const;
    virtual void setDestroyObserver(IDmDestroyObserver* observer);

    virtual ~RefCnt();

private:
    /// What either counter of the block holds before its first use.
    static constexpr std::uint32_t unreferenced = 0xFFFFFFFF;

    /// The counters live apart from the object, so that the block can outlast it.
    struct Block {
        std::atomic<std::uint32_t> references{unreferenced};
        std::atomic<std::uint32_t> holders{unreferenced};
    };

    void destroy();

    Block* block_;
    std::atomic<std::uint8_t> destroying_{0};
    std::atomic<IDmDestroyObserver*> observer_{nullptr};
};

}  // namespace KOR
