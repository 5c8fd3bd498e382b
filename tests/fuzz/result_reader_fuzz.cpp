// Parses any text, and restores from a file of that content.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "modules/BusinessLayer/MaterialAnalysis/JsonDocument.h"
#include "tests/fuzz/RestoreRig.h"

namespace fuzz {
namespace {

bool isFinite(const rapidjson::Document& document) {
    rapidjson::StringBuffer text;
    rapidjson::Writer<rapidjson::StringBuffer> writer(text);
    return document.Accept(writer);
}

void parse(const std::string& text) {
    if (text.find('\0') != std::string::npos) {
        require(!KOR::parseJson(text), "a text with a zero byte is no JSON");
        return;
    }
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag>(text.c_str());
    const bool accepted = KOR::parseJson(text).has_value();
    require(!accepted || !document.HasParseError(), "what the library rejects is rejected");
    require(accepted || document.HasParseError() || !isFinite(document),
            "what the library accepts with finite numbers is accepted");
}

void restore(const std::string& text) {
    RestoreRig rig(Settings{});
    rig.write(text);
    const std::optional<Records> records = rig.restore();
    if (!records) return;

    const std::optional<Records> again = rig.restore();
    require(again && areSame(*again, *records), "a file gives the same records each time");
    rig.save(*records);
    const std::optional<Records> rewritten = rig.restore();
    require(rewritten && areSame(*rewritten, *records),
            "restored records that are written come back as they are");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    fuzz::parse(text);
    fuzz::restore(text);
    return 0;
}
