#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fake_host {

/// Returns the text with line feeds shown as "\n".
std::string visible(const std::string& text);

/// Returns the function's name without "KOR::KorMaterialAnalysis::", or all of it where it does not
/// begin so.
std::string shortName(const std::string& function);

/// Returns the shortest text that reads back to the same double, with a ".0" where it is integral.
std::string asText(double value);

/// Returns the numbers in decimal, separated by ", ".
template <typename Number>
std::string joined(const std::vector<Number>& numbers) {
    std::string text;
    for (const Number number : numbers) {
        if (!text.empty()) text += ", ";
        text += std::to_string(number);
    }
    return text;
}

}  // namespace fake_host
