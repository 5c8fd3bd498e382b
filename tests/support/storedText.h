#pragma once

#include <filesystem>
#include <string>

namespace fake_host {

/// How this platform's text files end their lines: as in systems that separate directories by "\\",
/// by two bytes, or else by one.
constexpr const char* lineEnd = std::filesystem::path::preferred_separator == '\\' ? "\r\n" : "\n";

/// Returns the bytes that a text file of this platform holds of `text`.
inline std::string stored(const std::string& text) {
    std::string bytes;
    for (const char c : text) {
        if (c == '\n') {
            bytes += lineEnd;
        } else {
            bytes += c;
        }
    }
    return bytes;
}

}  // namespace fake_host
