#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Values as they stand in reports.
namespace validator {

/// In quotes, on one line; what is not UTF-8 as "\xNN".
std::string shown(std::string_view text);
std::string shown(const std::string& text);
std::string shown(const char* text);  ///< null as "null"

std::string shown(bool value);

/// The shortest text that reads back to the same double.
std::string shown(double value);

template <std::integral Number>
std::string shown(Number value) {
    return std::to_string(value);
}

/// Which object a pointer leads to means nothing to a reader, but whether it is the right one does.
inline std::string shown(const void* pointer) {
    return pointer == nullptr ? "null" : "an object";
}

template <typename Element>
std::string shown(const std::vector<Element>& values) {
    std::string text = "{";
    for (const auto& value : values) {
        if (text.size() > 1) text += ", ";
        text += shown(value);
    }
    return text + "}";
}

}  // namespace validator
