#include "modules/BusinessLayer/MaterialAnalysis/RefCnt.h"

namespace KOR {

RefCnt<void>::RefCnt() : block_(new Block) {
    block_->holders.exchange(1);
}

RefCnt<void>::~RefCnt() {
    const bool lastHolder = block_->holders.fetch_sub(1) == 1;
    if (lastHolder && block_->references.load() == 0) delete block_;
}

std::uint32_t RefCnt<void>::addRef() {
    std::uint32_t fresh = unreferenced;
    if (block_->references.compare_exchange_strong(fresh, 1)) return 1;
    if (block_->references.load() == 0) return 0;
    const std::uint32_t before = block_->references.fetch_add(1);
    if (before != 0) return before + 1;
    // The last reference went between the two looks: the object stays dead.
    block_->references.store(0);
    return 0;
}

std::uint32_t RefCnt<void>::release() {
    if (static_cast<std::int32_t>(block_->references.load()) > 0) {
        const std::uint32_t left = block_->references.fetch_sub(1) - 1;
        if (left > 0) return left;
    }
    destroy();
    return 0;
}

std::uint32_t RefCnt<void>::refCount() const {
    return block_->references.load();
}

IDmDestroyObserver* RefCnt<void>::getDestroyObserver() const {
    return observer_.load();
}

void RefCnt<void>::setDestroyObserver(IDmDestroyObserver* observer) {
    observer_.exchange(observer);
}

void RefCnt<void>::destroy() {
    if (destroying_.exchange(1) != 0) return;
    // An object that was never referenced is dead now as well, and its block may go with it.
    block_->references.store(0);
    if (IDmDestroyObserver* const observer = observer_.load()) observer->objectDestroyed();
    delete this;
}

}  // namespace KOR
