#pragma once

#include <cstdint>
#include <optional>
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

/// One line of the host's log, opened by the constructor and closed by the destructor; its text is
/// handed over in one piece. Where the host wants no such line, it is false and stays unwritten.
///
/// Numbers come out the same whatever the locale.
class LogLine {
public:
    explicit LogLine(const LogSource& source);
    ~LogLine();
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    explicit operator bool() const { return stream_ != nullptr; }
    /// What is to be written. Only for a line that is true.
    std::ostringstream& text() { return *text_; }

    /// Hands the text over. Called once.
    void write();

private:
    LogStream* stream_ = nullptr;
    std::optional<std::ostringstream> text_;  // costly to make, even for nothing
};

/// Writes nothing for a null text, which a stream takes for a failure.
inline void putPart(std::ostream& stream, const char* text) {
    if (text != nullptr) stream << text;
}

template <typename Part>
void putPart(std::ostream& stream, const Part& part) {
    stream << part;
}

/// Writes one line: the parts one after another, as a stream formats them.
template <typename... Parts>
void logLine(const LogSource& source, const Parts&... parts) {
    LogLine line(source);
    if (!line) return;
    (putPart(line.text(), parts), ...);
    line.write();
}

}  // namespace KOR
