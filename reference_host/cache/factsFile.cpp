#include "reference_host/cache/factsFile.h"

#include <cerrno>
#include <cstdint>
#include <exception>
#include <random>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "reference_host/cache/names.h"
#include "reference_host/media/RegularFile.h"

namespace reference_host::cache {
namespace {

namespace fs = std::filesystem;

/// All timestamps of key frames that are ever kept take three megabytes at most, and so do faces in
/// a hundred thousand pictures.
constexpr std::int64_t maxBytes = std::int64_t{8} << 20;

/// Returns all of the file, as far as it is there.
std::string contentOf(const media::RegularFile& file) {
    std::string text(static_cast<std::size_t>(file.sizeBytes()), '\0');
    std::size_t got = 0;
    while (got < text.size()) {
        const std::ptrdiff_t more =
            file.readAt(static_cast<std::int64_t>(got),
                        reinterpret_cast<std::uint8_t*>(text.data()) + got, text.size() - got);
        if (more <= 0) break;
        got += static_cast<std::size_t>(more);
    }
    text.resize(got);
    return text;
}

/// A new file beside the one that it is to replace. Goes away unless it does.
class Replacement {
public:
    explicit Replacement(const fs::path& directory) {
        // Not by mkstemp, whose files nobody else may read.
        std::random_device random;
        do {
            name_ = directory / (std::string(unfinishedFactsName) + sixDigits(random()));
            descriptor_ = ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        } while (descriptor_ < 0 && errno == EEXIST);
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement() {
        if (descriptor_ < 0) return;
        ::close(descriptor_);
        if (!isInPlace_) ::unlink(name_.c_str());
    }

    /// False where not everything can be written.
    bool write(const std::string& text) const {
        std::size_t written = 0;
        while (written < text.size()) {
            const std::ptrdiff_t more =
                ::write(descriptor_, text.data() + written, text.size() - written);
            if (more < 0 && errno == EINTR) continue;
            if (more <= 0) return false;
            written += static_cast<std::size_t>(more);
        }
        return true;
    }

    void putInPlaceOf(const fs::path& file) {
        isInPlace_ = ::rename(name_.c_str(), file.c_str()) == 0;
    }

private:
    static std::string sixDigits(unsigned number) {
        return std::to_string(1'000'000 + number % 1'000'000).substr(1);
    }

    fs::path name_;
    int descriptor_ = -1;
    bool isInPlace_ = false;
};

}  // namespace

std::optional<KeptFacts> keptFacts(const fs::path& directory) noexcept try {
    const media::RegularFile file(directory / factsName);
    if (file.sizeBytes() > maxBytes) return std::nullopt;
    return parseKeptFacts(contentOf(file));
} catch (const std::exception&) {
    return std::nullopt;
}

void keepFacts(const fs::path& directory, const KeptFacts& facts) noexcept try {
    const std::string text = keptFactsText(facts);
    if (text.size() > static_cast<std::size_t>(maxBytes)) return;
    fs::create_directories(directory);
    Replacement replacement(directory);
    if (replacement.write(text)) replacement.putInPlaceOf(directory / factsName);
} catch (const std::exception&) {
    // As it says: they will be found out again.
}

void forgetFacts(const fs::path& directory) noexcept {
    std::error_code notThere;
    fs::remove(directory / factsName, notThere);
}

}  // namespace reference_host::cache
