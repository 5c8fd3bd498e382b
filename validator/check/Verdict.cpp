#include "validator/check/Verdict.h"

#include <array>
#include <utility>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace validator {
namespace {

constexpr std::array<std::pair<Outcome, std::string_view>, 5> names = {{
    {Outcome::pass, "pass"},
    {Outcome::warn, "warn"},
    {Outcome::skip, "skip"},
    {Outcome::fail, "fail"},
    {Outcome::crash, "crash"},
}};

std::optional<Outcome> outcomeNamed(std::string_view wanted) {
    for (const auto& [outcome, name] : names) {
        if (name == wanted) return outcome;
    }
    return std::nullopt;
}

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void write(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void write(Writer& writer, const char* key, std::string_view text) {
    writer.Key(key);
    write(writer, text);
}

std::string textAt(const rapidjson::Document& document, const char* key) {
    const auto member = document.FindMember(key);
    if (member == document.MemberEnd() || !member->value.IsString()) return "";
    return {member->value.GetString(), member->value.GetStringLength()};
}

}  // namespace

std::string_view nameOf(Outcome outcome) {
    for (const auto& [each, name] : names) {
        if (each == outcome) return name;
    }
    return "";
}

bool isFault(const Verdict& verdict) {
    return verdict.outcome == Outcome::fail || verdict.outcome == Outcome::crash;
}

std::string toJson(const Verdict& verdict) {
    rapidjson::StringBuffer text;
    Writer writer(text);
    writer.StartObject();
    write(writer, "outcome", nameOf(verdict.outcome));
    write(writer, "what", verdict.what);
    write(writer, "expected", verdict.expected);
    write(writer, "found", verdict.found);
    write(writer, "reason", verdict.reason);
    writer.Key("warnings");
    writer.StartArray();
    for (const std::string& warning : verdict.warnings)
        write(writer, warning);
    writer.EndArray();
    writer.EndObject();
    return {text.GetString(), text.GetSize()};
}

std::optional<Verdict> verdictFrom(const std::string& json) {
    rapidjson::Document document;
    document.Parse(json.data(), json.size());
    if (document.HasParseError() || !document.IsObject()) return std::nullopt;
    const auto outcome = outcomeNamed(textAt(document, "outcome"));
    if (!outcome) return std::nullopt;
    Verdict verdict{*outcome,
                    textAt(document, "what"),
                    textAt(document, "expected"),
                    textAt(document, "found"),
                    textAt(document, "reason"),
                    {}};
    // As a constant: iterators of the other kind compare ambiguously since C++20.
    const auto warnings = std::as_const(document).FindMember("warnings");
    if (warnings == std::as_const(document).MemberEnd() || !warnings->value.IsArray())
        return std::nullopt;
    for (const auto& warning : warnings->value.GetArray()) {
        if (!warning.IsString()) return std::nullopt;
        verdict.warnings.emplace_back(warning.GetString(), warning.GetStringLength());
    }
    return verdict;
}

}  // namespace validator
