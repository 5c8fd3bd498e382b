#pragma once

#include <cstdint>
#include <string_view>

#include "host/logger.h"

namespace reference_host {

/// Where a line of the log was written. The texts stay the caller's; an empty unit means unknown.
struct LogOrigin {
    std::string_view sourceUnit;
    std::int32_t sourceLine = 0;
    std::string_view function;
    std::string_view tag;
};

/// Writes one line to the log; nothing while there is none. One line break at the end of `text` is
/// left out, since every line ends with its own. Any thread.
void writeLog(KOR::IBsLogger::Severity severity, const LogOrigin& origin, std::string_view text);

}  // namespace reference_host
