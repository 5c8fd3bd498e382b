#include "autotrim/Table.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "autotrim/Utf8.h"
#include "host/status.h"

namespace autotrim {
namespace {

std::string_view sourceOfRecords(const FileReport& report) {
    switch (report.outcome) {
        case Outcome::analysed:
            return "analysed";
        case Outcome::restored:
            return "from the cache";
        case Outcome::byDefault:
            return report.type == MaterialType::photo ? "photo: kept whole"
                                                      : "too short to analyse: kept whole";
        case Outcome::failed:
            break;
    }
    return "failed";
}

std::string heading(const FileReport& report) {
    std::string text = printable(report.file);
    if (report.type == MaterialType::video && report.duration) {
        text += "  " + timeCode(*report.duration);
    }
    return text.append("  (").append(sourceOfRecords(report)).append(")\n");
}

bool tellsOfFaces(const FileReport& report) {
    return std::any_of(report.results.begin(), report.results.end(),
                       [](const Record& record) { return record.faces.has_value(); });
}

std::string facesOf(const Record& record) {
    return record.faces ? std::to_string(*record.faces) : "-";
}

/// Returns what was found in a photo; nothing where nothing was looked for.
std::string facesOfPhoto(const FileReport& report) {
    if (!tellsOfFaces(report)) return {};
    const Record& record = report.results.front();
    if (record.faces == 0) return "  no face\n";
    std::string text = "  faces    left     top   width  height\n";
    text += fmt::format("  {:>5}", facesOf(record));
    for (const double fraction : record.faceRectOfPhoto)
        text += fmt::format("  {:>5.1f}%", fraction * 100);
    return text + (record.faces > 1 ? "  (the largest)\n" : "\n");
}

std::string scenesOfVideo(const FileReport& report) {
    if (report.results.empty()) return "  no scene was kept\n";
    const bool withFaces = tellsOfFaces(report);
    std::string text = fmt::format("  {:>5}  {:<12}    {:<12}  {:<13}  {}{}\n", "scene", "begin",
                                   "end", "best keyframe", " score", withFaces ? "  faces" : "");
    int number = 0;
    for (const Record& record : report.results) {
        text += fmt::format("  {:>5}  {:<12}  - {:<12}  {:<13}  {:>6.3f}", ++number,
                            timeCode(record.begin), timeCode(record.end),
                            timeCode(record.posOfMaxScore), record.score);
        if (withFaces) text += fmt::format("  {:>5}", facesOf(record));
        text += '\n';
    }
    return text;
}

}  // namespace

std::string timeCode(std::int64_t ticks) {
    constexpr std::int64_t ticksPerMillisecond = KOR::ticksPerSecond / 1000;
    // The remainder decides on the rounding, so that no addition can overflow.
    const std::int64_t half = ticksPerMillisecond / 2;
    const std::int64_t rest = ticks % ticksPerMillisecond;
    std::int64_t milliseconds = ticks / ticksPerMillisecond;
    if (rest >= half) ++milliseconds;
    if (rest <= -half) --milliseconds;

    const std::int64_t magnitude = milliseconds < 0 ? -milliseconds : milliseconds;
    return fmt::format("{}{:02}:{:02}:{:02}.{:03}", milliseconds < 0 ? "-" : "",
                       magnitude / 3600000, magnitude / 60000 % 60, magnitude / 1000 % 60,
                       magnitude % 1000);
}

std::string toTable(const FileReport& report) {
    if (report.outcome == Outcome::failed) return {};
    return heading(report) +
           (report.type == MaterialType::photo ? facesOfPhoto(report) : scenesOfVideo(report));
}

}  // namespace autotrim
