#include "autotrim/ProgressText.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "autotrim/Utf8.h"

namespace autotrim {
namespace {

std::string shortTime(std::chrono::seconds time) {
    const auto seconds = time.count();
    return seconds < 3600
               ? fmt::format("{}:{:02}", seconds / 60, seconds % 60)
               : fmt::format("{}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

/// A bar that is longer takes room from the file's name and shows nothing more.
constexpr std::size_t widestBar = 30;
/// A bar that is shorter says less than the percentage beside it.
constexpr std::size_t narrowestBar = 8;
/// What a name needs to be told from others.
constexpr std::size_t shortestName = 12;
/// The percentage with a time of up to an hour: the bar leaves room for it before it is known, so
/// that its length does not change.
constexpr std::size_t numbersColumns = std::string_view("100%  59:59 left").size();
/// The bar's two brackets and a blank after it.
constexpr std::size_t frameColumns = 3;

/// Returns how many cells a bar has in a line of `columns`; 0 where there is no room for one.
std::size_t cellsIn(std::size_t columns) {
    constexpr std::size_t besideBar = numbersColumns + frameColumns + shortestName;
    if (columns < besideBar + narrowestBar) return 0;
    return std::min(widestBar, columns - besideBar);
}

std::string bar(int percent, std::size_t cells) {
    const std::size_t done = cells * static_cast<std::size_t>(percent) / 100;
    return fmt::format("[{}{}]", std::string(done, '='), std::string(cells - done, ' '));
}

/// Which of several files it is; empty for a single one.
std::string placeOf(const Progress& progress) {
    return progress.count > 1 ? fmt::format("{}/{}", progress.number, progress.count) : "";
}

std::string placedName(const Progress& progress, std::size_t columns) {
    std::string place = placeOf(progress);
    if (!place.empty()) place += " ";
    const std::size_t room = columns > place.size() ? columns - place.size() : 0;
    return place + fittedTail(printable(progress.file), room);
}

}  // namespace

std::string progressBar(const Progress& progress, std::optional<std::chrono::seconds> left,
                        std::size_t columns) {
    const int percent = std::clamp(progress.percent, 0, 100);
    const std::size_t cells = cellsIn(columns);
    std::string line = cells == 0 ? "" : bar(percent, cells) + " ";
    line += fmt::format("{:3}%", percent);
    if (line.size() > columns) return line.substr(0, columns);

    const std::string time = left ? fmt::format("  {} left", shortTime(*left)) : "";
    if (line.size() + time.size() <= columns) line += time;
    const std::size_t room = columns - line.size();
    constexpr std::size_t gap = 2;
    if (room >= gap + shortestName) return line + "  " + placedName(progress, room - gap);
    const std::string place = placeOf(progress);
    return !place.empty() && room >= gap + place.size() ? line + "  " + place : line;
}

std::string openingLine(const Progress& progress, std::size_t columns) {
    constexpr std::string_view verb = "opening ";
    if (columns < verb.size() + shortestName) return std::string(verb).substr(0, columns);
    return std::string(verb) + placedName(progress, columns - verb.size());
}

std::string progressLine(const Progress& progress) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer writer(buffer);
    const std::string file = validUtf8(progress.file);
    writer.StartObject();
    writer.Key("file");
    writer.String(file.data(), static_cast<rapidjson::SizeType>(file.size()));
    writer.Key("percent");
    writer.Int(progress.percent);
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + '\n';
}

std::optional<std::chrono::seconds> RemainingTime::at(int percent, Clock::time_point now) {
    if (!first_) first_ = Mark{percent, now};
    if (!latest_ || latest_->percent != percent) latest_ = Mark{percent, now};
    const int gained = latest_->percent - first_->percent;
    if (gained <= 0) return std::nullopt;

    // What has gone by since the latest step counts against what that step promised.
    const auto pace = (latest_->time - first_->time) / gained;
    const auto left = pace * (100 - percent) - (now - latest_->time);
    return std::chrono::ceil<std::chrono::seconds>(std::max(left, Clock::duration::zero()));
}

}  // namespace autotrim
