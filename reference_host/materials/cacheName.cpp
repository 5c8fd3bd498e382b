#include "reference_host/materials/cacheName.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace reference_host {
namespace {

/// FNV-1a: the same on every machine and in every version, unlike std::hash.
std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 0x100000001b3;
    }
    return hash;
}

std::string hexOf(std::uint64_t number) {
    std::array<char, 16> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    const std::string text(digits.data(), end);
    return std::string(digits.size() - text.size(), '0') + text;
}

/// File systems end names at 255 bytes; this much is enough to recognise one.
constexpr std::size_t plainNameBytes = 48;

std::string plainNameOf(const std::filesystem::path& file) {
    std::string name = file.filename().string().substr(0, plainNameBytes);
    for (char& c : name) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                           (c >= '0' && c <= '9') || c == '-' || c == '.';
        if (!plain) c = '_';
    }
    return name;
}

}  // namespace

std::string cacheName(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::path place = std::filesystem::canonical(file, error);
    if (error) place = file;
    const std::uintmax_t sizeBytes = std::filesystem::file_size(place, error);
    const auto modified = std::filesystem::last_write_time(place, error).time_since_epoch();
    const std::string key =
        place.string() + '\n' + std::to_string(sizeBytes) + '\n' + std::to_string(modified.count());
    return plainNameOf(place) + "-" + hexOf(hashOf(key));
}

}  // namespace reference_host
