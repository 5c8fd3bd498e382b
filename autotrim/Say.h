#pragma once

#include <string_view>

namespace autotrim {

/// Tells the user something: writes it, made harmless, on one line of the standard error.
void say(std::string_view text);

/// Tells the user something about a file.
void say(std::string_view file, std::string_view text);

}  // namespace autotrim
