#pragma once

#include <cstddef>
#include <cstdint>

namespace KOR {

/// What a log has in common.
class IBsLogger {
public:
    /// How much a line matters. The component writes every line with `info`, which is 4.
    enum Severity : std::uint32_t {
        trace = 1,
        debug = 2,
        detail = 3,
        info = 4,
        warning = 5,
        error = 6,
        fatal = 7,
    };
};

/// One line that is being written.
class LogStream {
public:
    /// 0. Takes the line's whole text, `length` bytes of UTF-8. The component calls it once.
    virtual void write(const char* text, std::size_t length) = 0;

    /// 1. Ends the line and the stream's life.
    virtual void close() = 0;

protected:
    ~LogStream() = default;
};

/// The host's log. May be used from any thread.
class KorLoggerWrapper {
public:
    /// 0. Says whether lines of this severity are wanted.
    virtual bool testSeverity(IBsLogger::Severity severity) = 0;

    /// 1. Opens one line.
    ///
    /// `sourceUnit` is the source file without its ending, `sourceLine` the line in it, `function`
    /// the qualified name of the function that speaks, `tag` a mark of the caller's, empty for
    /// none. All are zero-terminated and stay the caller's. Returns a stream that the caller ends
    /// with close(), or null: the line is then not written.
    virtual LogStream* createLogStream(IBsLogger::Severity severity, const char* sourceUnit,
                                       std::int32_t sourceLine, const char* function,
                                       const char* tag) = 0;

protected:
    ~KorLoggerWrapper() = default;
};

}  // namespace KOR

extern "C" {

/// Returns the log of the given number, or null where there is none. The component uses number 0.
/// Not owned; lives as long as the process. Any thread.
KOR::KorLoggerWrapper* loggerWrapper(std::int32_t number);
}
