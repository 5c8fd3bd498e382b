#include "reference_host/media/Messages.h"

extern "C" {
#include <libavutil/log.h>
}

#include <algorithm>
#include <array>
#include <cstdarg>
#include <mutex>

#include "reference_host/services/Log.h"

namespace reference_host::media {
namespace {

thread_local FirstError* innermost = nullptr;

KOR::IBsLogger::Severity severityOf(int level) {
    if (level <= AV_LOG_FATAL) return KOR::IBsLogger::fatal;
    if (level <= AV_LOG_ERROR) return KOR::IBsLogger::error;
    if (level <= AV_LOG_WARNING) return KOR::IBsLogger::warning;
    return KOR::IBsLogger::info;
}

/// One line of printable text: names and texts of the footage stand in messages, too.
std::string clean(std::string text) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7f; };
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

void onMessage(void* speaker, int level, const char* format, va_list arguments) {
    if (level > AV_LOG_INFO) return;
    std::array<char, 1024> line{};
    int withoutPrefix = 0;
    av_log_format_line2(speaker, level, format, arguments, line.data(), line.size(),
                        &withoutPrefix);
    const std::string text = clean(line.data());
    if (text.empty()) return;
    if (level <= AV_LOG_ERROR && innermost != nullptr) innermost->note(text);

    const AVClass* description = speaker == nullptr ? nullptr : *static_cast<AVClass**>(speaker);
    const char* name = description == nullptr ? "ffmpeg" : description->item_name(speaker);
    writeLog(severityOf(level), {.sourceUnit = {}, .sourceLine = 0, .function = {}, .tag = name},
             text);
}

}  // namespace

void routeMessages() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback(onMessage); });
}

FirstError::FirstError() : outer_(innermost) {
    innermost = this;
}

FirstError::~FirstError() {
    innermost = outer_;
}

std::string FirstError::explain(const std::string& reason) const {
    return text_.empty() ? reason : reason + " (" + text_ + ")";
}

void FirstError::note(const std::string& text) {
    if (text_.empty()) text_ = text;
}

}  // namespace reference_host::media
