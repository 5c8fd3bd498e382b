#include "validator/Report.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace validator {
namespace {

constexpr std::array outcomes = {Outcome::pass, Outcome::warn, Outcome::skip, Outcome::fail,
                                 Outcome::crash};

std::size_t countOf(Outcome outcome, const std::vector<Judged>& judged) {
    return static_cast<std::size_t>(
        std::count_if(judged.begin(), judged.end(),
                      [=](const Judged& each) { return each.verdict.outcome == outcome; }));
}

void appendDetail(std::string& text, std::string_view name, std::string_view value) {
    if (value.empty()) return;
    text += "       ";
    text += name;
    text += value;
    text += "\n";
}

void appendCheck(std::string& text, const Judged& judged) {
    const Verdict& verdict = judged.verdict;
    std::string name(nameOf(verdict.outcome));
    name.resize(7, ' ');
    text += name + judged.check.id + "\n";
    appendDetail(text, "", judged.check.claim);
    appendDetail(text, "looked at: ", verdict.what);
    appendDetail(text, "expected:  ", verdict.expected);
    appendDetail(text,
                 verdict.outcome == Outcome::crash ? "the check " : "found:     ", verdict.found);
    appendDetail(text, "because:   ", verdict.reason);
    for (const std::string& warning : verdict.warnings)
        appendDetail(text, "warning:   ", warning);
}

std::string summary(const std::vector<Judged>& judged) {
    std::string text = std::to_string(judged.size()) + " checks:";
    for (const Outcome outcome : outcomes) {
        const std::size_t count = countOf(outcome, judged);
        if (count == 0) continue;
        text += text.back() == ':' ? " " : ", ";
        text += std::to_string(count) + " " + std::string(nameOf(outcome));
    }
    return text + "\n";
}

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void write(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void write(Writer& writer, const char* key, std::string_view text) {
    writer.Key(key);
    write(writer, text);
}

void writeIfAny(Writer& writer, const char* key, std::string_view text) {
    if (!text.empty()) write(writer, key, text);
}

void write(Writer& writer, const Judged& judged) {
    const Verdict& verdict = judged.verdict;
    writer.StartObject();
    write(writer, "id", judged.check.id);
    write(writer, "claim", judged.check.claim);
    write(writer, "outcome", nameOf(verdict.outcome));
    writeIfAny(writer, "what", verdict.what);
    writeIfAny(writer, "expected", verdict.expected);
    writeIfAny(writer, "found", verdict.found);
    writeIfAny(writer, "reason", verdict.reason);
    if (!verdict.warnings.empty()) {
        writer.Key("warnings");
        writer.StartArray();
        for (const std::string& warning : verdict.warnings)
            write(writer, warning);
        writer.EndArray();
    }
    writer.EndObject();
}

template <typename Content>
std::string document(Content content) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    write(writer, "schema", "material-analysis-validator/1");
    content(writer);
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

}  // namespace

std::string listText(const std::vector<ListedCheck>& checks) {
    std::size_t width = 0;
    for (const ListedCheck& check : checks)
        width = std::max(width, check.id.size());
    std::string text;
    for (const ListedCheck& check : checks) {
        text += check.id + std::string(width + 2 - check.id.size(), ' ') + check.claim + "\n";
    }
    return text + std::to_string(checks.size()) + " checks\n";
}

std::string reportText(const std::vector<Judged>& judged, const Options& options) {
    std::string text;
    for (const Judged& each : judged) {
        if (options.verbose || each.verdict.outcome != Outcome::pass) appendCheck(text, each);
    }
    return text + summary(judged);
}

std::string reportJson(const std::vector<Judged>& judged, const Options& options) {
    return document([&](Writer& writer) {
        write(writer, "side", options.side == Side::host ? "host" : "component");
        write(writer, "library", options.library);
        writer.Key("seed");
        writer.Uint64(options.seed);
        writer.Key("counts");
        writer.StartObject();
        for (const Outcome outcome : outcomes) {
            writer.Key(std::string(nameOf(outcome)).c_str());
            writer.Uint64(countOf(outcome, judged));
        }
        writer.EndObject();
        writer.Key("checks");
        writer.StartArray();
        for (const Judged& each : judged)
            write(writer, each);
        writer.EndArray();
    });
}

std::string listJson(const std::vector<ListedCheck>& checks) {
    return document([&](Writer& writer) {
        writer.Key("checks");
        writer.StartArray();
        for (const ListedCheck& check : checks) {
            writer.StartObject();
            write(writer, "id", check.id);
            write(writer, "claim", check.claim);
            writer.EndObject();
        }
        writer.EndArray();
    });
}

bool hasFaults(const std::vector<Judged>& judged) {
    return std::any_of(judged.begin(), judged.end(),
                       [](const Judged& each) { return isFault(each.verdict); });
}

}  // namespace validator
