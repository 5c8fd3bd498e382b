#include "reference_host/cache/KeptFacts.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "host/results.h"
#include "reference_host/media/Limits.h"

namespace reference_host::cache {
namespace {

/// Raise it when the members change.
constexpr int format = 1;

using Value = rapidjson::Value;
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void write(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void write(Writer& writer, const std::vector<std::string>& texts) {
    writer.StartArray();
    for (const std::string& text : texts)
        write(writer, text);
    writer.EndArray();
}

/// The members of an object, asked for by type: what is missing or of another type is none.
class Members {
public:
    explicit Members(const Value& object) : object_(object) {}

    std::optional<bool> boolean(const char* name) const {
        const Value* value = find(name);
        return value != nullptr && value->IsBool() ? std::optional(value->GetBool()) : std::nullopt;
    }

    std::optional<std::int64_t> integer(const char* name) const {
        const Value* value = find(name);
        return value != nullptr && value->IsInt64() ? std::optional(value->GetInt64())
                                                    : std::nullopt;
    }

    std::optional<std::string> text(const char* name) const {
        const Value* value = find(name);
        return value != nullptr && value->IsString()
                   ? std::optional<std::string>(std::in_place, value->GetString(),
                                                value->GetStringLength())
                   : std::nullopt;
    }

    /// Returns the elements, each made by `elementOf`; none where it makes none of any of them.
    template <typename Element>
    std::optional<std::vector<Element>> list(
        const char* name, std::optional<Element> (*elementOf)(const Value&)) const {
        const Value* value = find(name);
        if (value == nullptr || !value->IsArray()) return std::nullopt;
        std::vector<Element> elements;
        elements.reserve(value->Size());
        for (const Value& element : value->GetArray()) {
            std::optional<Element> made = elementOf(element);
            if (!made) return std::nullopt;
            elements.push_back(*std::move(made));
        }
        return elements;
    }

private:
    const Value* find(const char* name) const {
        const auto found = object_.FindMember(name);
        return found == object_.MemberEnd() ? nullptr : &found->value;
    }

    const Value& object_;
};

std::optional<std::int64_t> timestampOf(const Value& value) {
    return value.IsInt64() ? std::optional(value.GetInt64()) : std::nullopt;
}

/// A warning is one plain line: whoever prints it need not fear what stands in a file.
std::optional<std::string> warningOf(const Value& value) {
    if (!value.IsString()) return std::nullopt;
    std::string text(value.GetString(), value.GetStringLength());
    const bool isPlain =
        std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return isPlain ? std::optional(std::move(text)) : std::nullopt;
}

using FaceCount = std::pair<std::int64_t, std::int32_t>;

std::optional<FaceCount> faceCountOf(const Value& value) {
    if (!value.IsArray() || value.Size() != 2) return std::nullopt;
    if (!value[0].IsInt64() || !value[1].IsInt()) return std::nullopt;
    const int count = value[1].GetInt();
    if (count < 0 || count > KOR::maxFacesPerFrame) return std::nullopt;
    return FaceCount(value[0].GetInt64(), count);
}

template <typename Element, typename KeyOf>
bool isAscending(const std::vector<Element>& elements, KeyOf keyOf) {
    return std::adjacent_find(elements.begin(), elements.end(), [&](const auto& a, const auto& b) {
               return keyOf(a) >= keyOf(b);
           }) == elements.end();
}

bool isAbsolutePath(const std::string& text) {
    return text.starts_with('/') && text.find('\0') == std::string::npos;
}

/// Whether a look at a file can have given these.
bool isPossible(const media::FootageFacts& footage) {
    const bool isInRange =
        footage.durationTicks > 0 && footage.durationTicks <= media::maxDurationTicks &&
        footage.keyTimestamps.size() <= media::maxKeyTimestamps &&
        isAscending(footage.keyTimestamps, [](std::int64_t timestamp) { return timestamp; });
    const bool isStill =
        footage.durationTicks == 1 && footage.lastTimestamp == 0 && footage.keyTimestamps.empty();
    return isInRange && (footage.isVideo || isStill);
}

std::optional<media::FootageFacts> footageOf(const Members& members) {
    const auto isVideo = members.boolean("isVideo");
    const auto duration = members.integer("durationTicks");
    const auto origin = members.integer("originTimestamp");
    const auto last = members.integer("lastTimestamp");
    auto keys = members.list("keyTimestamps", timestampOf);
    auto warnings = members.list("warnings", warningOf);
    if (!isVideo || !duration || !origin || !last || !keys || !warnings) return std::nullopt;
    media::FootageFacts footage{*isVideo, *duration,        *origin,
                                *last,    *std::move(keys), *std::move(warnings)};
    return isPossible(footage) ? std::optional(std::move(footage)) : std::nullopt;
}

}  // namespace

std::string keptFactsText(const KeptFacts& facts) {
    rapidjson::StringBuffer text;
    Writer writer(text);
    writer.StartObject();
    writer.Key("format");
    writer.Int(format);
    writer.Key("madeBy");
    write(writer, facts.madeBy);
    writer.Key("file");
    write(writer, facts.file);
    writer.Key("isVideo");
    writer.Bool(facts.footage.isVideo);
    writer.Key("durationTicks");
    writer.Int64(facts.footage.durationTicks);
    writer.Key("originTimestamp");
    writer.Int64(facts.footage.originTimestamp);
    writer.Key("lastTimestamp");
    writer.Int64(facts.footage.lastTimestamp);
    writer.Key("keyTimestamps");
    writer.StartArray();
    for (const std::int64_t timestamp : facts.footage.keyTimestamps)
        writer.Int64(timestamp);
    writer.EndArray();
    writer.Key("warnings");
    write(writer, facts.footage.warnings);
    writer.Key("analysisWarnings");
    write(writer, facts.analysisWarnings);
    writer.Key("faceCounts");
    writer.StartArray();
    for (const auto& [position, count] : facts.faceCounts) {
        writer.StartArray();
        writer.Int64(position);
        writer.Int(count);
        writer.EndArray();
    }
    writer.EndArray();
    writer.EndObject();
    return {text.GetString(), text.GetSize()};
}

std::optional<KeptFacts> parseKeptFacts(std::string_view text) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
    if (document.HasParseError() || !document.IsObject()) return std::nullopt;
    const Members members(document);
    if (members.integer("format") != format) return std::nullopt;
    auto madeBy = members.text("madeBy");
    auto file = members.text("file");
    auto footage = footageOf(members);
    auto warnings = members.list("analysisWarnings", warningOf);
    const auto counts = members.list("faceCounts", faceCountOf);
    if (!madeBy || !file || !isAbsolutePath(*file) || !footage) return std::nullopt;
    if (!warnings || !counts) return std::nullopt;
    if (!isAscending(*counts, [](const FaceCount& count) { return count.first; })) {
        return std::nullopt;
    }
    const bool wasAnalysed = !warnings->empty() || !counts->empty();
    if (!footage->isVideo && wasAnalysed) return std::nullopt;
    return KeptFacts{*std::move(madeBy),
                     *std::move(file),
                     *std::move(footage),
                     *std::move(warnings),
                     {counts->begin(), counts->end()}};
}

}  // namespace reference_host::cache
