#include "modules/BusinessLayer/MaterialAnalysis/JsonDocument.h"

#include <charconv>
#include <cstdint>
#include <locale>
#include <sstream>
#include <system_error>
#include <utility>

namespace KOR {

namespace {

/// Reads all of `digits` as a number; false where it is none of this type, or beyond its range.
template <typename Number>
bool read(const char* digits, const char* end, Number& number) {
    const auto [stop, error] = std::from_chars(digits, end, number);
    return error == std::errc() && stop == end;
}

/// The same for doubles of which from_chars may not say whether they are too large or too small:
/// what is too small is 0.
bool readExtreme(const char* digits, const char* end, double& number) {
    std::istringstream stream(std::string(digits, end));
    stream.imbue(std::locale::classic());
    // Without memory the number is not refused: left alone, the stream would say no more than that.
    stream.exceptions(std::ios_base::badbit);
    return static_cast<bool>(stream >> number);
}

/// A document that the parser hands its numbers to as texts. The parser's own way to exact doubles
/// has no defined result for a zero with a large exponent.
class ExactDocument : public JsonDocument {
public:
    bool RawNumber(const char* digits, rapidjson::SizeType length, bool /*copy*/) {
        const char* const end = digits + length;
        if (std::int64_t whole = 0; read(digits, end, whole)) return Int64(whole);
        double real = 0;
        return (read(digits, end, real) || readExtreme(digits, end, real)) && Double(real);
    }
};

}  // namespace

std::optional<JsonDocument> parseJson(const std::string& text) {
    constexpr unsigned flags =
        rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
    ExactDocument document;
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonMemory> reader;
    rapidjson::StringStream stream(text.c_str());
    auto parseInto = [&](JsonDocument& /*the same*/) {
        return !reader.Parse<flags>(stream, document).IsError();
    };
    document.Populate(parseInto);
    // A zero byte in the text has ended the parsing.
    if (reader.HasParseError() || stream.Tell() != text.size()) return std::nullopt;
    return std::move(static_cast<JsonDocument&>(document));
}

}  // namespace KOR
