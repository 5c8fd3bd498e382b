#include "autotrim/Utf8.h"

#include <algorithm>
#include <cstdint>

namespace autotrim {
namespace {

/// One step through a text: the character that begins there, or what stands in its place.
struct Step {
    std::size_t length;  ///< bytes; at least 1
    bool valid;          ///< whether they are one UTF-8 character
    char32_t codePoint;  ///< of a valid one
};

/// What the first byte of a sequence promises, after table 3-7 of the Unicode standard: overlong
/// forms, surrogates and values beyond U+10FFFF already show in the second byte.
struct Lead {
    std::size_t length;
    std::uint8_t secondMin = 0x80;
    std::uint8_t secondMax = 0xBF;
};

Lead leadOf(std::uint8_t byte) {
    if (byte < 0x80) return {1};
    if (byte < 0xC2) return {0};
    if (byte < 0xE0) return {2};
    if (byte == 0xE0) return {3, 0xA0, 0xBF};
    if (byte == 0xED) return {3, 0x80, 0x9F};
    if (byte < 0xF0) return {3};
    if (byte == 0xF0) return {4, 0x90, 0xBF};
    if (byte < 0xF4) return {4};
    if (byte == 0xF4) return {4, 0x80, 0x8F};
    return {0};
}

Step stepAt(std::string_view text, std::size_t at) {
    const auto byteAt = [text](std::size_t index) {
        return static_cast<std::uint8_t>(text[index]);
    };
    const Lead lead = leadOf(byteAt(at));
    if (lead.length == 0) return {1, false, 0};
    if (lead.length == 1) return {1, true, byteAt(at)};

    char32_t codePoint = byteAt(at) & (0xFFU >> (lead.length + 1));
    for (std::size_t i = 1; i < lead.length; ++i) {
        const std::uint8_t min = i == 1 ? lead.secondMin : 0x80;
        const std::uint8_t max = i == 1 ? lead.secondMax : 0xBF;
        if (at + i >= text.size() || byteAt(at + i) < min || byteAt(at + i) > max) {
            return {i, false, 0};
        }
        codePoint = (codePoint << 6U) | (byteAt(at + i) & 0x3FU);
    }
    return {lead.length, true, codePoint};
}

/// Says whether a character moves the cursor, changes the terminal's state, or reorders the text
/// around it (the explicit marks, embeddings, overrides and isolates), or ends a line.
bool disturbs(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x061C || c == 0x200E || c == 0x200F ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

void appendEscaped(std::string& out, std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        out += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
    }
}

/// No character below Hangul Jamo is wide; of those above, every one is given two columns.
constexpr char32_t firstWideCodePoint = 0x1100;

}  // namespace

std::string validUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Step step = stepAt(text, at);
        out += step.valid ? text.substr(at, step.length) : "\xEF\xBF\xBD";
        at += step.length;
    }
    return out;
}

std::string printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Step step = stepAt(text, at);
        const std::string_view bytes = text.substr(at, step.length);
        if (!step.valid || disturbs(step.codePoint)) {
            appendEscaped(out, bytes);
        } else {
            out += bytes == "\\" ? "\\\\" : bytes;
        }
        at += step.length;
    }
    return out;
}

std::size_t columnsNeeded(std::string_view text) {
    std::size_t columns = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Step step = stepAt(text, at);
        columns += step.codePoint < firstWideCodePoint ? 1 : 2;
        at += step.length;
    }
    return columns;
}

std::string fittedTail(std::string_view text, std::size_t columns) {
    constexpr std::string_view omission = "...";
    std::size_t needed = columnsNeeded(text);
    if (needed <= columns) return std::string(text);
    if (columns <= omission.size()) return std::string(omission.substr(0, columns));

    std::size_t at = 0;
    while (needed > columns - omission.size()) {
        const Step step = stepAt(text, at);
        needed -= step.codePoint < firstWideCodePoint ? 1 : 2;
        at += step.length;
    }
    return std::string(omission).append(text.substr(at));
}

}  // namespace autotrim
