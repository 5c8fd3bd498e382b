#include "modules/BusinessLayer/MaterialAnalysis/ResultCacheText.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "modules/BusinessLayer/MaterialAnalysis/FixedText.h"
#include "modules/BusinessLayer/MaterialAnalysis/JsonMemory.h"

namespace KOR {

namespace {

using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, JsonMemory>;
using Writer = rapidjson::PrettyWriter<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonMemory>;

std::string rectText(const KorRect& rect) {
    return fixedText(rect.x) + "," + fixedText(rect.y) + "," + fixedText(rect.width) + "," +
           fixedText(rect.height);
}

void writeResult(Writer& writer, const MaterialAnalysisResult& result) {
    writer.StartObject();
    writer.Key("score");
    writer.Double(result.score);
    writer.Key("begin");
    writer.Int64(result.begin);
    writer.Key("end");
    writer.Int64(result.end);
    writer.Key("posOfMaxScore");
    writer.Int64(result.posOfMaxScore);
    writer.Key("faceRectOfPhoto");
    writer.String(rectText(result.faceRectOfPhoto).c_str());
    writer.EndObject();
}

}  // namespace

std::string joinedKinds(const std::vector<std::int32_t>& analysisKinds) {
    std::string text;
    for (const std::int32_t kind : analysisKinds) {
        if (!text.empty()) text += ",";
        text += std::to_string(kind);
    }
    return text;
}

std::string resultCacheText(const ResultCacheHeader& header,
                            const std::vector<const MaterialAnalysisResult*>& results) {
    Buffer text;
    Writer writer(text);
    writer.StartObject();
    writer.Key("version");
    writer.String(header.version.c_str());
    writer.Key("analysisTypes");
    writer.String(joinedKinds(header.analysisKinds).c_str());
    writer.Key("minScenceDuration");
    writer.Int64(header.minScenceDuration);
    writer.Key("scenceDetectionThreshold");
    writer.Double(header.scenceDetectionThreshold);
    writer.Key("result");
    writer.StartArray();
    for (const MaterialAnalysisResult* result : results)
        writeResult(writer, *result);
    writer.EndArray();
    writer.EndObject();
    return text.GetString();
}

}  // namespace KOR
