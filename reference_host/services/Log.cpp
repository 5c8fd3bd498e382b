#include "reference_host/services/Log.h"

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>

#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>

#include "reference_host/ReferenceHost.h"

namespace reference_host {
namespace {

using KOR::IBsLogger;

spdlog::level::level_enum levelOf(IBsLogger::Severity severity) {
    switch (severity) {
        case IBsLogger::trace:
            return spdlog::level::trace;
        case IBsLogger::debug:
        case IBsLogger::detail:
            return spdlog::level::debug;
        case IBsLogger::info:
            return spdlog::level::info;
        case IBsLogger::warning:
            return spdlog::level::warn;
        case IBsLogger::error:
            return spdlog::level::err;
        case IBsLogger::fatal:
            return spdlog::level::critical;
    }
    return spdlog::level::off;
}

/// The log of number 0.
class HostLog final : public KOR::KorLoggerWrapper {
public:
    /// Never destroyed: threads that end with the process may still write a line.
    static HostLog& instance() {
        static HostLog* const log = new HostLog;
        return *log;
    }

    void open(const std::filesystem::path& file) {
        auto logger = std::make_shared<spdlog::logger>(
            "host", std::make_shared<spdlog::sinks::basic_file_sink_mt>(file.string()));
        logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%l] %v");
        // Each line is in the file at once: a log that lacks the last lines before a crash is of
        // little use, and there are few lines for each material.
        logger->flush_on(spdlog::level::trace);
        const std::scoped_lock lock(mutex_);
        logger_ = std::move(logger);
    }

    std::shared_ptr<spdlog::logger> logger() {
        const std::scoped_lock lock(mutex_);
        return logger_;
    }

    bool testSeverity(IBsLogger::Severity severity) override {
        const std::shared_ptr<spdlog::logger> current = logger();
        return current && current->should_log(levelOf(severity));
    }

    KOR::LogStream* createLogStream(IBsLogger::Severity severity, const char* sourceUnit,
                                    std::int32_t sourceLine, const char* function,
                                    const char* tag) override;

private:
    HostLog() = default;

    std::mutex mutex_;
    std::shared_ptr<spdlog::logger> logger_;
};

std::string textOf(const char* text) {
    return text == nullptr ? std::string() : text;
}

/// Gathers the pieces of one line, which it writes when it is closed.
class Line final : public KOR::LogStream {
public:
    Line(IBsLogger::Severity severity, const char* sourceUnit, std::int32_t sourceLine,
         const char* function, const char* tag)
        : severity_(severity),
          sourceUnit_(textOf(sourceUnit)),
          sourceLine_(sourceLine),
          function_(textOf(function)),
          tag_(textOf(tag)) {}
    virtual ~Line() = default;

    void write(const char* text, std::size_t length) override {
        if (text != nullptr) text_.append(text, length);
    }

    void close() override {
        writeLog(severity_, {sourceUnit_, sourceLine_, function_, tag_}, text_);
        delete this;
    }

private:
    IBsLogger::Severity severity_;
    std::string sourceUnit_;
    std::int32_t sourceLine_;
    std::string function_;
    std::string tag_;
    std::string text_;
};

KOR::LogStream* HostLog::createLogStream(IBsLogger::Severity severity, const char* sourceUnit,
                                         std::int32_t sourceLine, const char* function,
                                         const char* tag) {
    if (!testSeverity(severity)) return nullptr;
    return new Line(severity, sourceUnit, sourceLine, function, tag);
}

std::string prefixOf(const LogOrigin& origin) {
    std::string prefix;
    if (!origin.tag.empty()) prefix.append("[").append(origin.tag).append("] ");
    if (!origin.sourceUnit.empty()) {
        prefix.append(origin.sourceUnit).append(":").append(std::to_string(origin.sourceLine));
        prefix.append(" ");
    }
    if (!origin.function.empty()) prefix.append(origin.function).append(": ");
    return prefix;
}

}  // namespace

void writeLog(IBsLogger::Severity severity, const LogOrigin& origin, std::string_view text) {
    const std::shared_ptr<spdlog::logger> logger = HostLog::instance().logger();
    if (!logger) return;
    if (text.ends_with('\n')) text.remove_suffix(1);
    // Handed over as an argument: braces in the text are no format.
    logger->log(levelOf(severity), "{}{}", prefixOf(origin), text);
}

void openLog(const std::filesystem::path& file) {
    // spdlog would make the directory, and a mistyped name would go unnoticed.
    const std::filesystem::path directory = file.parent_path();
    std::error_code ignored;
    if (!directory.empty() && !std::filesystem::is_directory(directory, ignored)) {
        throw std::runtime_error("the log " + file.string() +
                                 " cannot be written: its directory does not exist");
    }
    try {
        HostLog::instance().open(file);
    } catch (const spdlog::spdlog_ex& failure) {
        throw std::runtime_error("the log " + file.string() +
                                 " cannot be written: " + failure.what());
    }
}

}  // namespace reference_host

KOR::KorLoggerWrapper* loggerWrapper(std::int32_t number) {
    reference_host::HostLog& log = reference_host::HostLog::instance();
    return number == 0 && log.logger() ? &log : nullptr;
}
