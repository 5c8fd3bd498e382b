#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"

#include <locale>
#include <string>

namespace KOR {

namespace {

/// The component speaks as one unit, whichever of its sources a line comes from.
constexpr const char* sourceUnit = "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis";

}  // namespace

LogLine::LogLine(const LogSource& source) {
    KorLoggerWrapper* const logger = loggerWrapper(0);
    if (logger == nullptr || !logger->testSeverity(IBsLogger::info)) return;
    stream_ =
        logger->createLogStream(IBsLogger::info, sourceUnit, source.line, source.function, "");
    if (stream_ == nullptr) return;
    text_.emplace().imbue(std::locale::classic());
    // Left alone, a stream that finds no memory says nothing and cuts the text short.
    text_->exceptions(std::ios_base::badbit);
}

LogLine::~LogLine() {
    if (stream_ != nullptr) stream_->close();
}

void LogLine::write() {
    const std::string text = text_->str();
    stream_->write(text.data(), text.size());
}

}  // namespace KOR
