#include "reference_host/media/StoredPicture.h"

#include <atomic>
#include <utility>

namespace reference_host::media {
namespace {

std::atomic<std::int64_t> taken{0};

std::int64_t sizeOf(const StoredPicture& picture) {
    return static_cast<std::int64_t>(sizeof picture + picture.planes.capacity());
}

}  // namespace

std::size_t storedBytes(int widthPx, int heightPx) {
    const std::size_t width = static_cast<std::size_t>(widthPx);
    const std::size_t height = static_cast<std::size_t>(heightPx);
    return width * height + 2 * ((width + 1) / 2) * ((height + 1) / 2);
}

std::shared_ptr<const StoredPicture> PictureMemory::keep(StoredPicture picture) {
    const std::int64_t bytes = sizeOf(picture);
    taken += bytes;
    return {new StoredPicture(std::move(picture)), [bytes](const StoredPicture* kept) {
                delete kept;
                taken -= bytes;
            }};
}

std::int64_t PictureMemory::takenBytes() {
    return taken;
}

}  // namespace reference_host::media
