#include "modules/BusinessLayer/MaterialAnalysis/FixedText.h"

#include <array>
#include <charconv>

namespace KOR {

std::string fixedText(double value) {
    // The longest: a sign, the 309 digits of the largest double, the point, six digits.
    std::array<char, 1 + 309 + 1 + 6> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6);
    return std::string(text.data(), end.ptr);
}

}  // namespace KOR
