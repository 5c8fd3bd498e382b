#include <atomic>
#include <exception>
#include <string>
#include <utility>

#include "fake_host/FakeHost.h"
#include "fake_host/text.h"
#include "host/logger.h"

namespace fake_host {
namespace {

class FakeLogStream final : public KOR::LogStream {
public:
    explicit FakeLogStream(LogLine line) : line_(std::move(line)) { ++host().live.logStreams; }

    void write(const char* text, std::size_t length) override {
        if (written_) host().complain("a log stream was written to twice");
        written_ = true;
        if (host().recording) line_.text.assign(text, length);
    }

    void close() override {
        // A text that found no memory is on its way out as an exception.
        const bool isLost = !written_ && std::uncaught_exceptions() > 0;
        if (!written_ && !isLost) host().complain("a log stream was closed without a text");
        if (host().recording && !isLost) {
            host().note("log " + shortName(line_.function) + ": \"" + visible(line_.text) + "\"");
            if (host().onLogLine) host().onLogLine(line_);
            host().addLogLine(std::move(line_));
        }
        delete this;
    }

private:
    ~FakeLogStream() { --host().live.logStreams; }

    LogLine line_;
    bool written_ = false;
};

/// Holds what is the same in every line of the component against the one that was opened.
void checkFrame(const LogLine& line) {
    if (line.severity != KOR::IBsLogger::info) host().complain("a log line of another severity");
    if (line.sourceUnit != "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis") {
        host().complain("a log line from " + line.sourceUnit);
    }
    if (line.sourceLine <= 0) host().complain("a log line without a source line");
    if (!line.tag.empty()) host().complain("a log line with the tag " + line.tag);
    if (shortName(line.function) == line.function) {
        host().complain("a log line of the function " + line.function);
    }
}

class FakeLogger final : public KOR::KorLoggerWrapper {
public:
    bool testSeverity(KOR::IBsLogger::Severity severity) override {
        if (severity != KOR::IBsLogger::info) host().complain("another severity was tested");
        return !host().faults.severityDisabled;
    }

    KOR::LogStream* createLogStream(KOR::IBsLogger::Severity severity, const char* sourceUnit,
                                    std::int32_t sourceLine, const char* function,
                                    const char* tag) override {
        if (host().faults.severityDisabled) host().complain("a line was opened although disabled");
        if (host().faults.logStreamsFail) return nullptr;
        if (!host().recording) return new FakeLogStream(LogLine{});
        LogLine line{severity, sourceUnit, sourceLine, function, tag, ""};
        checkFrame(line);
        return new FakeLogStream(std::move(line));
    }
};

}  // namespace
}  // namespace fake_host

KOR::KorLoggerWrapper* loggerWrapper(std::int32_t number) {
    static fake_host::FakeLogger logger;
    if (number != 0 || fake_host::host().faults.loggerAbsent) return nullptr;
    return &logger;
}
