#include "reference_host/cache/contentKey.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <exception>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

#include <xxhash.h>

#include "reference_host/cache/analysisRevision.h"
#include "reference_host/media/MediaError.h"

namespace reference_host::cache {
namespace {

constexpr std::int64_t blockBytes = std::int64_t{64} << 10;
constexpr std::int64_t blocks = 16;

constexpr std::string_view digits = "0123456789abcdef";

/// A hash that grows with what is added to it: XXH3 of 128 bits, the same on every machine and in
/// every version.
class Hash {
public:
    Hash() : state_(XXH3_createState()) {
        if (!state_) throw std::bad_alloc();
        XXH3_128bits_reset(state_.get());
    }

    void add(const void* bytes, std::size_t size) {
        XXH3_128bits_update(state_.get(), bytes, size);
    }

    std::string hex() const {
        XXH128_canonical_t hash;
        XXH128_canonicalFromHash(&hash, XXH3_128bits_digest(state_.get()));
        std::string text;
        for (const unsigned char byte : hash.digest) {
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }

private:
    struct Free {
        void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Free> state_;
};

/// Adds bytes of a file to a hash.
class Sampler {
public:
    Sampler(const media::RegularFile& file, Hash& hash) : file_(file), hash_(hash) {}

    /// Adds the bytes from `begin` up to `end`, or up to where the file ends by now.
    void add(std::int64_t begin, std::int64_t end) {
        while (begin < end) {
            const auto wanted = static_cast<std::size_t>(std::min(end - begin, blockBytes));
            const std::ptrdiff_t got = file_.readAt(begin, buffer_.data(), wanted);
            if (got < 0) {
                throw media::MediaError("the file cannot be read: " +
                                        std::generic_category().message(static_cast<int>(-got)));
            }
            if (got == 0) return;
            hash_.add(buffer_.data(), static_cast<std::size_t>(got));
            begin += got;
        }
    }

private:
    const media::RegularFile& file_;
    Hash& hash_;
    std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(blockBytes);
};

void addSamples(const media::RegularFile& file, Hash& hash) {
    Sampler sampler(file, hash);
    const std::int64_t size = file.sizeBytes();
    if (size <= blocks * blockBytes) return sampler.add(0, size);
    const std::int64_t lastBlock = size - blockBytes;
    for (std::int64_t i = 0; i + 1 < blocks; ++i) {
        const std::int64_t begin = i * (lastBlock / (blocks - 1));
        sampler.add(begin, begin + blockBytes);
    }
    sampler.add(lastBlock, size);
}

}  // namespace

std::string contentKey(const media::RegularFile& file, std::string_view faceModel) {
    const std::timespec modified = file.modified();
    std::string facts;
    for (const std::int64_t number :
         {std::int64_t{analysisRevision}, file.sizeBytes(), std::int64_t{modified.tv_sec},
          std::int64_t{modified.tv_nsec}})
        facts += std::to_string(number) + "\n";
    facts += faceModel;
    facts += "\n";
    Hash hash;
    hash.add(facts.data(), facts.size());
    addSamples(file, hash);
    return hash.hex();
}

bool hasContentKey(const std::filesystem::path& path, std::string_view key,
                   std::string_view faceModel) noexcept try {
    return contentKey(media::RegularFile(path), faceModel) == key;
} catch (const std::exception&) {
    return false;
}

std::string fingerprint(const media::RegularFile& file) {
    Hash hash;
    Sampler(file, hash).add(0, file.sizeBytes());
    return hash.hex();
}

bool isContentKey(std::string_view name) {
    return name.size() == 2 * sizeof(XXH128_canonical_t::digest) &&
           name.find_first_not_of(digits) == std::string_view::npos;
}

}  // namespace reference_host::cache
