#pragma once

#include <cstdint>
#include <sstream>

#include "host/logger.h"

namespace KOR {

/// Who writes a line: the qualified name of the function, and the line on which it does.
struct LogSource {
    // Implicit, so that a name alone gives the place that names it.
    LogSource(const char* functionName, std::int32_t sourceLine = __builtin_LINE())
        : function(functionName), line(sourceLine) {}

    const char* function;
    std::int32_t line;
};

/// One line of the host's log: opened by the constructor, handed over in one piece by the
/// destructor. Where the host wants no such line, it is false and must not be written to.
///
/// Numbers come out the same whatever the locale.
class LogLine {
public:
    explicit LogLine(const LogSource& source);
    ~LogLine();
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    explicit operator bool() const { return stream_ != nullptr; }
    std::ostringstream& text() { return text_; }

private:
    LogStream* stream_ = nullptr;
    std::ostringstream text_;
};

/// Writes one line: the parts one after another, as a stream formats them.
template <typename... Parts>
void logLine(const LogSource& source, const Parts&... parts) {
    if (LogLine line(source); line) (line.text() << ... << parts);
}

}  // namespace KOR
