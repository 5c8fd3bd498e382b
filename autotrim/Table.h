#pragma once

#include <cstdint>
#include <string>

#include "autotrim/Report.h"

namespace autotrim {

/// Returns a position or duration as hours, minutes, seconds and milliseconds: "00:01:02.345".
/// Rounded to the nearest millisecond.
std::string timeCode(std::int64_t ticks);

/// Returns the records of one file for people to read: a heading, and a line per record, with the
/// number of faces where they were looked for. Of a photo, which has no times, the heading, and the
/// faces where they were looked for: how many, and where the largest is. Nothing for a file that
/// failed, of which its error tells.
std::string toTable(const FileReport& report);

}  // namespace autotrim
