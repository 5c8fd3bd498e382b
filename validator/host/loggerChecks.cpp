#include <array>
#include <chrono>
#include <limits>
#include <mutex>
#include <set>
#include <thread>

#include "host/logger.h"
#include "validator/check/onThreads.h"
#include "validator/host/exports.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

using KOR::IBsLogger;

constexpr std::array severities = {IBsLogger::trace, IBsLogger::debug,   IBsLogger::detail,
                                   IBsLogger::info,  IBsLogger::warning, IBsLogger::error,
                                   IBsLogger::fatal};

KOR::KorLoggerWrapper* logOf(const HostLibrary& host, std::int32_t number) {
    return host.service<KOR::KorLoggerWrapper*(std::int32_t)>(exports::logger)(number);
}

/// The log of number 0; the check is skipped where there is none, as the contract allows.
KOR::KorLoggerWrapper& log(const HostLibrary& host) {
    KOR::KorLoggerWrapper* const log = logOf(host, 0);
    if (log == nullptr) skip("the host has no log of number 0");
    return *log;
}

KOR::LogStream* openLine(KOR::KorLoggerWrapper& log, IBsLogger::Severity severity) {
    return log.createLogStream(severity, "validator/check", 1, "validator::check", "");
}

/// Writes a line where the log gives a stream, and returns whether it did.
bool wrote(KOR::KorLoggerWrapper& log, IBsLogger::Severity severity, const std::string& text) {
    KOR::LogStream* const stream = openLine(log, severity);
    if (stream == nullptr) return false;
    stream->write(text.data(), text.size());
    stream->close();
    return true;
}

void staysTheSame(HostLibrary& host) {
    for (const std::int32_t number : {0, 1, -1, std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min()})
        expectSame("loggerWrapper() of " + shown(number), logOf(host, number), logOf(host, number));
}

void answersSeverities(HostLibrary& host) {
    KOR::KorLoggerWrapper& theLog = log(host);
    bool isWanted = false;
    for (const IBsLogger::Severity severity : severities) {
        const bool wasWanted = isWanted;
        isWanted = theLog.testSeverity(severity);
        expectEqual("testSeverity() when asked again", theLog.testSeverity(severity), isWanted);
        if (wasWanted && !isWanted) {
            warn("the log wants lines of one severity, but not those of the next worse");
        }
    }
}

void writesLines(HostLibrary& host) {
    KOR::KorLoggerWrapper& theLog = log(host);
    for (const IBsLogger::Severity severity : severities) {
        const bool hasWritten = wrote(theLog, severity, "a line\n");
        if (theLog.testSeverity(severity) && !hasWritten) {
            warn("the log wants lines of severity " + shown(std::uint32_t{severity}) +
                 ", but gives no stream");
        }
    }
}

void takesAnyText(HostLibrary& host) {
    KOR::KorLoggerWrapper& theLog = log(host);
    // What formats a line must take its text for nothing but text.
    for (const std::string& text :
         {std::string(), std::string("%s%s%s%s%n {} {0} {:x}"), std::string(100000, 'x'),
          std::string("\xE7\xB4\xA0\xFF"), std::string("a\0b", 3), std::string("a\nb\n\n")})
        wrote(theLog, IBsLogger::fatal, text);
}

void closesUnwrittenLines(HostLibrary& host) {
    KOR::KorLoggerWrapper& theLog = log(host);
    for (int i = 0; i < 3; ++i) {
        if (KOR::LogStream* const stream = openLine(theLog, IBsLogger::fatal)) stream->close();
    }
}

void writesOnThreads(HostLibrary& host) {
    KOR::KorLoggerWrapper& theLog = log(host);
    onThreads([&](int) {
        for (int i = 0; i < 200; ++i)
            wrote(theLog, IBsLogger::error, "a line of one of four threads\n");
    });
}

/// The streams of lines that are open.
class OpenStreams {
public:
    void add(const KOR::LogStream* stream) {
        const std::scoped_lock lock(mutex_);
        expect(streams_.insert(stream).second, "the stream of a line",
               "one that no other open line has", "that of another thread's line");
    }

    void remove(const KOR::LogStream* stream) {
        const std::scoped_lock lock(mutex_);
        streams_.erase(stream);
    }

private:
    std::mutex mutex_;
    std::set<const KOR::LogStream*> streams_;
};

/// A log may make a line wait until that of another thread is closed, so that each thread has one
/// line open at a time.
void givesThreadsTheirOwnStreams(HostLibrary& host) {
    constexpr auto longEnoughToMeet = std::chrono::milliseconds(1);
    KOR::KorLoggerWrapper& theLog = log(host);
    OpenStreams open;
    onThreads([&](int) {
        for (int i = 0; i < 25; ++i) {
            KOR::LogStream* const stream = openLine(theLog, IBsLogger::fatal);
            if (stream == nullptr) skip("the log gives no stream");
            open.add(stream);
            stream->write("a line\n", 7);
            std::this_thread::sleep_for(longEnoughToMeet);
            open.remove(stream);
            stream->close();
        }
    });
}

}  // namespace

const std::vector<HostCheck> loggerChecks = {
    {"logger.stays-the-same",
     "loggerWrapper answers every number, and gives the same log, or null, each time.",
     staysTheSame},
    {"logger.answers-severities", "testSeverity answers each severity the same way each time.",
     answersSeverities},
    {"logger.writes-lines", "A line of any severity is written, or no stream is given for it.",
     writesLines},
    {"logger.takes-any-text",
     "Empty and long lines, marks of formats and bytes that are no text are taken as they are.",
     takesAnyText},
    {"logger.closes-unwritten-lines", "A stream can be closed without a text.",
     closesUnwrittenLines},
    {"logger.writes-on-threads", "Several threads may write lines at once.", writesOnThreads},
    {"logger.gives-threads-their-own-streams",
     "Lines that several threads have open at once have a stream each.",
     givesThreadsTheirOwnStreams},
};

}  // namespace validator
