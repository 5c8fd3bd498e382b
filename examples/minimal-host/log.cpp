// A log on the standard error.
#include <iostream>
#include <string>

#include "host/logger.h"

namespace minimal_host {
namespace {

class Line final : public KOR::LogStream {
public:
    explicit Line(const char* function) : text_(std::string(function) + ": ") {}

    void write(const char* text, std::size_t length) override { text_.append(text, length); }
    void close() override {
        std::clog << text_ + "\n";  // in one piece, so that lines of two threads do not mix
        delete this;
    }

private:
    ~Line() = default;
    std::string text_;
};

class Log final : public KOR::KorLoggerWrapper {
public:
    bool testSeverity(KOR::IBsLogger::Severity severity) override {
        return severity >= KOR::IBsLogger::info;
    }
    KOR::LogStream* createLogStream(KOR::IBsLogger::Severity, const char*, std::int32_t,
                                    const char* function, const char*) override {
        return new Line(function);
    }
};

}  // namespace
}  // namespace minimal_host

KOR::KorLoggerWrapper* loggerWrapper(std::int32_t number) {
    static minimal_host::Log log;
    return number == 0 ? &log : nullptr;
}
