#pragma once

#include <optional>
#include <string>

#include <rapidjson/document.h>

#include "modules/BusinessLayer/MaterialAnalysis/JsonMemory.h"

namespace KOR {

using JsonDocument =
    rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<JsonMemory>,
                               JsonMemory>;
using JsonValue = JsonDocument::ValueType;

/// Parses `text` as JSON; nothing when it is none. What is accepted is what the library accepts by
/// default, with two exceptions: a text with a zero byte, which the library takes for its end, and
/// one with a number beyond the largest double, of which the library lets a few pass as infinite.
///
/// Nesting of any depth is read without recursion. A number is the double that is nearest to it, so
/// that every double comes back as it was written.
std::optional<JsonDocument> parseJson(const std::string& text);

}  // namespace KOR
