#include "tests/component/AllocationWatch.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace fake_host {
namespace {

/// In front of each block: the part that it belongs to, 0 for none. It keeps the block's alignment.
struct alignas(alignof(std::max_align_t)) Header {
    std::int64_t part;
};

struct Watching {
    std::int64_t part = 0;  ///< goes up with each watch
    bool isOpen = false;
    std::int64_t failing = 0;
    Failing mode = Failing::onlyThatOne;
    std::int64_t made = 0;
    std::int64_t left = 0;
    bool hasThrown = false;
    bool hasGivenNull = false;
};

Watching watching;

/// Counts one more allocation, and says whether it is to fail.
bool nextFails() {
    ++watching.made;
    if (watching.failing == 0 || watching.made < watching.failing) return false;
    return watching.made == watching.failing || watching.mode == Failing::allBehindIt;
}

/// Null where the allocation is to fail, or does.
void* allocate(std::size_t size) {
    if (watching.isOpen && nextFails()) return nullptr;
    void* const memory = std::malloc(sizeof(Header) + size);
    if (memory == nullptr) return nullptr;
    auto* const header = new (memory) Header{watching.isOpen ? watching.part : 0};
    if (watching.isOpen) ++watching.left;
    return header + 1;
}

void deallocate(void* block) {
    if (block == nullptr) return;
    Header* const header = static_cast<Header*>(block) - 1;
    if (header->part != 0 && header->part == watching.part) --watching.left;
    std::free(header);
}

}  // namespace

AllocationWatch::AllocationWatch(std::int64_t failing, Failing mode) {
    watching = Watching{watching.part + 1, true, failing, mode, 0, 0, false, false};
}

AllocationWatch::~AllocationWatch() {
    endPart();
}

void AllocationWatch::endPart() {
    watching.isOpen = false;
}

std::int64_t AllocationWatch::made() const {
    return watching.made;
}

std::int64_t AllocationWatch::left() const {
    return watching.left;
}

bool AllocationWatch::hasThrown() const {
    return watching.hasThrown;
}

bool AllocationWatch::hasGivenNull() const {
    return watching.hasGivenNull;
}

}  // namespace fake_host

void* operator new(std::size_t size) {
    void* const block = fake_host::allocate(size);
    if (block != nullptr) return block;
    fake_host::watching.hasThrown = true;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t& /*none*/) noexcept {
    void* const block = fake_host::allocate(size);
    if (block == nullptr) fake_host::watching.hasGivenNull = true;
    return block;
}

void* operator new[](std::size_t size) {
    return ::operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return ::operator new(size, tag);
}

void operator delete(void* block) noexcept {
    fake_host::deallocate(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    fake_host::deallocate(block);
}

void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    fake_host::deallocate(block);
}

void operator delete[](void* block) noexcept {
    fake_host::deallocate(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept {
    fake_host::deallocate(block);
}

void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    fake_host::deallocate(block);
}
