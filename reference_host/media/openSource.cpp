#include "reference_host/media/openSource.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "reference_host/media/RegularFile.h"
#include "reference_host/media/decodeHeif.h"

namespace reference_host::media {
namespace {

/// Bytes in memory.
class HeldBytes : public ByteSource {
public:
    explicit HeldBytes(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

    std::int64_t sizeBytes() const override { return static_cast<std::int64_t>(bytes_.size()); }

    std::ptrdiff_t readAt(std::int64_t offset, std::uint8_t* buffer,
                          std::size_t size) const override {
        const auto begin =
            static_cast<std::size_t>(std::clamp<std::int64_t>(offset, 0, sizeBytes()));
        const std::size_t count = std::min(size, bytes_.size() - begin);
        std::copy_n(bytes_.data() + begin, count, buffer);
        return static_cast<std::ptrdiff_t>(count);
    }

private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace

std::unique_ptr<ByteSource> openSource(const std::filesystem::path& path) {
    auto file = std::make_unique<RegularFile>(path);
    std::optional<std::vector<std::uint8_t>> picture = decodeHeif(*file);
    if (picture) return std::make_unique<HeldBytes>(*std::move(picture));
    return file;
}

}  // namespace reference_host::media
