#include "reference_host/tasks/PictureShelf.h"

#include <algorithm>
#include <utility>

#include "reference_host/media/StoredPicture.h"

namespace reference_host {
namespace {

/// What may be taken for each footage that is analysed at once, and by how much the pictures of one
/// stay below it.
constexpr std::int64_t bytesOfUse = std::int64_t{64} << 20;
constexpr std::int64_t bytesOfFootage = std::int64_t{56} << 20;

}  // namespace

PictureShelf& PictureShelf::instance() {
    // Never destroyed: while the process ends, a run may still put something here.
    static PictureShelf& shelf = *new PictureShelf;
    return shelf;
}

PictureShelf::Use::Use() {
    instance().begin();
}

PictureShelf::Use::~Use() {
    instance().end();
}

void PictureShelf::begin() {
    const std::scoped_lock lock(mutex_);
    mostUses_ = std::max(mostUses_, ++uses_);
    const std::int64_t limit = bytesOfUse * mostUses_ - bytesOfFootage;
    while (!holders_.empty() && media::PictureMemory::takenBytes() > limit) {
        if (const std::shared_ptr<Footage> oldest = holders_.front().lock()) {
            oldest->keepPictures({});
        }
        holders_.pop_front();
    }
}

void PictureShelf::end() {
    const std::scoped_lock lock(mutex_);
    --uses_;
}

void PictureShelf::put(const std::shared_ptr<Footage>& footage, Footage::Pictures pictures) {
    const bool isEmpty = pictures.empty();
    footage->keepPictures(std::move(pictures));
    const std::scoped_lock lock(mutex_);
    holders_.remove_if([&](const std::weak_ptr<Footage>& holder) {
        const std::shared_ptr<Footage> held = holder.lock();
        return !held || held == footage;
    });
    if (!isEmpty) holders_.push_back(footage);
}

}  // namespace reference_host
