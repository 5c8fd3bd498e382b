#include "reference_host/tasks/PictureShelf.h"

#include <utility>

#include "reference_host/media/StoredPicture.h"

namespace reference_host {
namespace {

/// While less is taken, the next footage finds room enough.
constexpr std::int64_t littleBytes = media::PictureMemory::limitBytes / 8;

}  // namespace

PictureShelf& PictureShelf::instance() {
    // Never destroyed: while the process ends, a run may still put something here.
    static PictureShelf& shelf = *new PictureShelf;
    return shelf;
}

void PictureShelf::put(const std::shared_ptr<Footage>& footage, Footage::Pictures pictures) {
    footage->keepPictures(std::move(pictures));
    const std::scoped_lock lock(mutex_);
    holders_.remove_if([](const std::weak_ptr<Footage>& holder) { return holder.expired(); });
    holders_.push_back(footage);
}

void PictureShelf::makeRoom() {
    const std::scoped_lock lock(mutex_);
    while (!holders_.empty() && media::PictureMemory::takenBytes() > littleBytes) {
        if (const std::shared_ptr<Footage> oldest = holders_.front().lock()) {
            oldest->keepPictures({});
        }
        holders_.pop_front();
    }
}

}  // namespace reference_host
