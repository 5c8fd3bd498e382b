#include "autotrim/JsonReport.h"

#include <cmath>
#include <string_view>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "autotrim/Utf8.h"

namespace autotrim {
namespace {

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void write(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void write(Writer& writer, double number) {
    if (std::isfinite(number)) {
        writer.Double(number);
    } else {
        writer.Null();
    }
}

std::string_view nameOf(MaterialType type) {
    return type == MaterialType::video ? "video" : "photo";
}

std::string_view nameOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::analysed:
            return "analysed";
        case Outcome::restored:
            return "restored";
        case Outcome::byDefault:
            return "default";
        case Outcome::failed:
            break;
    }
    return "failed";
}

void write(Writer& writer, const Record& record) {
    writer.StartObject();
    writer.Key("score");
    write(writer, record.score);
    writer.Key("begin");
    writer.Int64(record.begin);
    writer.Key("end");
    writer.Int64(record.end);
    writer.Key("posOfMaxScore");
    writer.Int64(record.posOfMaxScore);
    writer.Key("faceRectOfPhoto");
    writer.StartArray();
    for (const double value : record.faceRectOfPhoto)
        write(writer, value);
    writer.EndArray();
    writer.Key("faces");
    record.faces ? writer.Int(*record.faces) : writer.Null();
    writer.EndObject();
}

void write(Writer& writer, const FileReport& file) {
    writer.StartObject();
    writer.Key("file");
    write(writer, validUtf8(file.file));
    writer.Key("type");
    file.type ? write(writer, nameOf(*file.type)) : void(writer.Null());
    writer.Key("duration");
    file.duration ? writer.Int64(*file.duration) : writer.Null();
    writer.Key("outcome");
    write(writer, nameOf(file.outcome));
    writer.Key("error");
    file.error.empty() ? void(writer.Null()) : write(writer, validUtf8(file.error));
    writer.Key("results");
    writer.StartArray();
    for (const Record& record : file.results)
        write(writer, record);
    writer.EndArray();
    writer.EndObject();
}

}  // namespace

std::string toJson(const Report& report) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.SetIndent(' ', 2);
    writer.SetFormatOptions(rapidjson::kFormatSingleLineArray);

    writer.StartObject();
    writer.Key("schema");
    writer.String("autotrim/1");
    writer.Key("version");
    writer.String(AUTOTRIM_VERSION);
    writer.Key("kinds");
    writer.StartArray();
    for (const std::int32_t kind : report.kinds)
        writer.Int(kind);
    writer.EndArray();
    writer.Key("materials");
    writer.StartArray();
    for (const FileReport& file : report.files)
        write(writer, file);
    writer.EndArray();
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + '\n';
}

}  // namespace autotrim
