#include "validator/check/shown.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace validator {
namespace {

/// Returns how many bytes the character at the beginning of `text` takes in UTF-8; 0 where there is
/// none.
std::size_t lengthOfCharacter(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    std::size_t length = 0;
    if (first < 0x80) length = 1;
    if (first >= 0xC2 && first < 0xE0) length = 2;
    if (first >= 0xE0 && first < 0xF0) length = 3;
    if (first >= 0xF0 && first < 0xF5) length = 4;
    if (length == 0 || length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) return 0;
    }
    return length;
}

std::string escaped(char byte) {
    if (byte == '\n') return "\\n";
    if (byte == '\r') return "\\r";
    if (byte == '\t') return "\\t";
    if (byte == '"' || byte == '\\') return std::string("\\") + byte;
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    return std::string("\\x") + digits[value >> 4U] + digits[value & 0xFU];
}

bool isPlain(char byte) {
    return static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F && byte != '"' && byte != '\\';
}

}  // namespace

std::string shown(std::string_view text) {
    std::string result = "\"";
    while (!text.empty()) {
        const std::size_t length = lengthOfCharacter(text);
        if (length > 1 || (length == 1 && isPlain(text.front()))) {
            result += text.substr(0, length);
        } else {
            result += escaped(text.front());
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result + "\"";
}

std::string shown(const std::string& text) {
    return shown(std::string_view(text));
}

std::string shown(const char* text) {
    return text == nullptr ? "null" : shown(std::string_view(text));
}

std::string shown(bool value) {
    return value ? "true" : "false";
}

std::string shown(double value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), value).ptr;
    return {text.begin(), end};
}

}  // namespace validator
