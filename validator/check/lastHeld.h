#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace validator {

/// The file, in the directory of a check, that says what was last found to be as expected. What
/// follows it is where a crash is to be looked for.
inline constexpr const char* lastHeldFile = "held";

/// The length of that file; a shorter name is followed by zeros.
inline constexpr std::size_t lastHeldLength = 200;

/// From now on, held() writes to `file`. To be called once, before any thread is started.
void keepLastHeld(const std::filesystem::path& file);

/// `what` was as expected. Any thread.
void held(std::string_view what);

}  // namespace validator
