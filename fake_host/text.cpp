#include "fake_host/text.h"

#include <array>
#include <charconv>

namespace fake_host {

std::string visible(const std::string& text) {
    std::string shown;
    for (const char c : text) {
        if (c == '\n') {
            shown += "\\n";
        } else {
            shown += c;
        }
    }
    return shown;
}

std::string shortName(const std::string& function) {
    const std::string prefix = "KOR::KorMaterialAnalysis::";
    return function.compare(0, prefix.size(), prefix) == 0 ? function.substr(prefix.size())
                                                           : function;
}

std::string asText(double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::string text(buffer.data(), end.ptr);
    if (text.find_first_of(".einf") == std::string::npos) text += ".0";
    return text;
}

}  // namespace fake_host
