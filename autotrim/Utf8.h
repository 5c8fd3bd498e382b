#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// File names are bytes, and may hold anything: these functions make them fit to be shown.
namespace autotrim {

/// Returns `text` with each part that is not UTF-8 replaced by U+FFFD. A sequence that breaks off
/// is replaced as one.
std::string validUtf8(std::string_view text);

/// Returns `text` in a form that is harmless on a terminal and stays on one line: bytes that are
/// not UTF-8, control characters and those that change the direction of writing appear as "\x1B",
/// byte by byte, and a backslash as two.
std::string printable(std::string_view text);

/// Returns a number of columns that valid UTF-8 `text` certainly fits into on a terminal.
std::size_t columnsNeeded(std::string_view text);

/// Returns valid UTF-8 `text`, or as much of its end behind "..." as fits into `columns`: the end
/// of a file's name tells more than its beginning.
std::string fittedTail(std::string_view text, std::size_t columns);

}  // namespace autotrim
