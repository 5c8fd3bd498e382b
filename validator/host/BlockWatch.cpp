#include "validator/host/BlockWatch.h"

#include <cstdlib>
#include <mutex>
#include <new>

#include "validator/check/expect.h"

namespace validator {
namespace {

struct Block {
    void* place = nullptr;
    std::size_t size = 0;
    int timesFreed = 0;
};

/// In plain storage, since the operators below use it: it may not ask for memory itself.
class Blocks {
public:
    void begin() {
        const std::scoped_lock lock(mutex_);
        count_ = 0;
        isOn_ = true;
    }

    void end() {
        const std::scoped_lock lock(mutex_);
        isOn_ = false;
    }

    void note(void* place, std::size_t size) {
        const std::scoped_lock lock(mutex_);
        if (isOn_ && count_ < most) blocks_[count_++] = {place, size, 0};
    }

    /// Says whether the block is kept instead of being freed.
    bool isKept(const void* place) {
        const std::scoped_lock lock(mutex_);
        Block* const block = find(place);
        if (block == nullptr) return false;
        ++block->timesFreed;
        return true;
    }

    Block of(const void* place) {
        const std::scoped_lock lock(mutex_);
        const Block* const block = find(place);
        return block == nullptr ? Block{} : *block;
    }

    std::size_t liveOfSize(std::size_t size) {
        const std::scoped_lock lock(mutex_);
        std::size_t live = 0;
        for (std::size_t i = 0; i < count_; ++i)
            live += blocks_[i].size == size && blocks_[i].timesFreed == 0 ? 1 : 0;
        return live;
    }

private:
    static constexpr std::size_t most = 20000;

    Block* find(const void* place) {
        for (std::size_t i = count_; i > 0; --i) {
            if (blocks_[i - 1].place == place) return &blocks_[i - 1];
        }
        return nullptr;
    }

    std::mutex mutex_;
    bool isOn_ = false;
    std::size_t count_ = 0;
    Block blocks_[most] = {};
};

constinit Blocks theBlocks;

}  // namespace

BlockWatch::BlockWatch() {
#ifdef _WIN32
    skip("a library has the operators of its own system library here");
#endif
    theBlocks.begin();
}

BlockWatch::~BlockWatch() {
    theBlocks.end();
}

std::size_t BlockWatch::sizeOf(const void* block) const {
    return theBlocks.of(block).size;
}

int BlockWatch::timesFreed(const void* block) const {
    return theBlocks.of(block).timesFreed;
}

std::size_t BlockWatch::liveOfSize(std::size_t size) const {
    return theBlocks.liveOfSize(size);
}

}  // namespace validator

void* operator new(std::size_t size) {
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    validator::theBlocks.note(block, size);
    return block;
}

// A sanitizer's own would not go by the one above.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept {
    if (block != nullptr && !validator::theBlocks.isKept(block)) std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    ::operator delete(block);
}
