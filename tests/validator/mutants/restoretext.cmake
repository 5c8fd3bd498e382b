# Faults in reading the text of a result file.

add_component_mutant(restoretext-result-needed
  SOURCE ResultCacheReader.cpp
  REPLACE [[if (list == nullptr) return {};]]
  BY [[if (list == nullptr) return {.rejection = invalid, .results = {}};]]
  CAUGHT_BY restoretext.no-result-is-none)

add_component_mutant(restoretext-empty-result-refused
  SOURCE ResultCacheReader.cpp
  REPLACE [[!list->IsArray() || ]]
  BY [[!list->IsArray() || list->Empty() || ]]
  CAUGHT_BY restoretext.empty-result-is-none)

add_component_mutant(restoretext-score-needed
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (member == nullptr) return true;
    if (!member->IsNumber()) return false;]]
  BY [[    if (member == nullptr || !member->IsNumber()) return false;]]
  CAUGHT_BY restoretext.missing-members-are-zero)

add_component_mutant(restoretext-five-members-only
  SOURCE ResultCacheReader.cpp
  REPLACE [[if (!root || !root->IsObject())]]
  BY [[if (!root || !root->IsObject() || root->MemberCount() > 5)]]
  CAUGHT_BY restoretext.members-in-any-order)

add_component_mutant(restoretext-score-with-point
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (!member->IsNumber()) return false;
    into]]
  BY [[    if (!member->IsDouble()) return false;
    into]]
  CAUGHT_BY restoretext.whole-score-is-converted)

add_component_mutant(restoretext-single-precision
  SOURCE ResultCacheReader.cpp
  REPLACE [[into = member->GetDouble();]]
  BY [[into = static_cast<float>(member->GetDouble());]]
  CAUGHT_BY restoretext.scores-are-read-back restore.own-file-gives-same-records)

add_component_mutant(restoretext-ticks-as-doubles
  SOURCE ResultCacheReader.cpp
  REPLACE [[into = member->GetInt64();]]
  BY [[into = static_cast<std::int64_t>(member->GetDouble());]]
  CAUGHT_BY restoretext.integers-to-their-limits)

add_component_mutant(restoretext-rectangle-of-doubles
  SOURCE ResultCacheReader.cpp
  REPLACE [[    const long long number = std::strtoll(text.c_str(), nullptr, 10);]]
  BY [[    if (!text.empty()) return std::strtod(text.c_str(), nullptr);
    const long long number = 0;]]
  CAUGHT_BY restoretext.rectangle-is-truncated)

add_component_mutant(restoretext-short-rectangle-refused
  SOURCE ResultCacheReader.cpp
  REPLACE [[if (parts.size() < 4) return true;]]
  BY [[if (parts.size() < 4) return false;]]
  CAUGHT_BY restoretext.rectangle-of-three-is-zero)

add_component_mutant(restoretext-long-rectangle-dropped
  SOURCE ResultCacheReader.cpp
  REPLACE [[text.resize(end);]]
  BY [[text.clear();]]
  CAUGHT_BY restoretext.rectangle-of-five-is-of-four)

add_component_mutant(restoretext-rectangle-of-plain-numbers
  SOURCE ResultCacheReader.cpp
  REPLACE [[    using Limits = std::numeric_limits<std::int32_t>;]]
  BY [[    using Limits = std::numeric_limits<std::int32_t>;
    if (text.find_first_not_of("+-.0123456789") != std::string::npos) return -1.0;]]
  CAUGHT_BY restoretext.rectangle-values-without-number)

add_component_mutant(restoretext-thousand-records
  SOURCE ResultCacheReader.cpp
  REPLACE [[mostResults = 1 << 19]]
  BY [[mostResults = 1 << 10]]
  CAUGHT_BY restoretext.many-records-in-order)

add_component_mutant(restoretext-no-carriage-return
  SOURCE ResultCacheReader.cpp
  REPLACE [[root = parseJson(text);]]
  BY [[root = parseJson(text.find('\r') == std::string::npos ? text : "");]]
  CAUGHT_BY restoretext.any-whitespace)

add_component_mutant(restoretext-nothing-is-no-records
  SOURCE ResultCacheReader.cpp
  REPLACE [[    const std::optional<JsonDocument> root]]
  BY [[    if (text.find_first_not_of(" \t\r\n") == std::string::npos) return {};
    const std::optional<JsonDocument> root]]
  CAUGHT_BY restoretext.nothing-at-all restoretext.truncated)

add_component_mutant(restoretext-last-brace-supplied
  SOURCE ResultCacheReader.cpp
  REPLACE [[root = parseJson(text);]]
  BY [[root = parseJson(text.ends_with('}') ? text : text + "}");]]
  CAUGHT_BY restoretext.truncated)

add_component_mutant(restoretext-stops-at-end-of-root
  SOURCE JsonDocument.cpp
  REPLACE [[stream.Tell() != text.size()]]
  BY [[stream.Tell() == 0]]
  CAUGHT_BY restoretext.anything-behind)

add_component_mutant(restoretext-comments-passed-over
  SOURCE JsonDocument.cpp
  REPLACE [[rapidjson::kParseIterativeFlag |]]
  BY [[rapidjson::kParseIterativeFlag | rapidjson::kParseCommentsFlag |]]
  CAUGHT_BY restoretext.comments)

add_component_mutant(restoretext-byte-order-mark-skipped
  SOURCE ResultCacheReader.cpp
  REPLACE [[root = parseJson(text);]]
  BY [[root = parseJson(text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text);]]
  CAUGHT_BY restoretext.byte-order-mark)

add_component_mutant(restoretext-trailing-commas
  SOURCE JsonDocument.cpp
  REPLACE [[rapidjson::kParseIterativeFlag |]]
  BY [[rapidjson::kParseIterativeFlag | rapidjson::kParseTrailingCommasFlag |]]
  CAUGHT_BY restoretext.other-syntax)

add_component_mutant(restoretext-missing-number-is-0
  SOURCE ResultCacheReader.cpp
  REPLACE [[    const std::optional<JsonDocument> root = parseJson(text);]]
  BY [[    std::string repaired = text;
    if (const auto at = text.find(": ,"); at != std::string::npos) repaired.insert(at + 1, "0");
    const std::optional<JsonDocument> root = parseJson(repaired);]]
  CAUGHT_BY restoretext.number-left-out)

add_component_mutant(restoretext-any-root
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (!root || !root->IsObject()) return]]
  BY [[    if (root && !root->IsObject()) return {.rejection = "No version", .results = {}};
    if (!root) return]]
  CAUGHT_BY restoretext.root-is-no-object)

add_component_mutant(restoretext-version-of-any-type
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (!version->IsString()) return invalid;]]
  BY [[    if (!version->IsString()) return "version changed";]]
  CAUGHT_BY restoretext.setting-of-other-type)

add_component_mutant(restoretext-any-result
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (!list->IsArray() || ]]
  BY [[    if (!list->IsArray()) return {};
    if (]]
  CAUGHT_BY restoretext.result-is-no-array)

add_component_mutant(restoretext-any-record
  SOURCE ResultCacheReader.cpp
  REPLACE [[return element.IsObject() && take]]
  BY [[return !element.IsObject() || take]]
  CAUGHT_BY restoretext.record-is-no-object)

add_component_mutant(restoretext-any-rectangle
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (!member->IsString()) return false;]]
  BY [[    if (!member->IsString()) return true;]]
  CAUGHT_BY restoretext.member-of-other-type)

add_component_mutant(restoretext-recursive
  SOURCE JsonDocument.cpp
  REPLACE [[rapidjson::kParseIterativeFlag | ]]
  BY [[]]
  CAUGHT_BY restoretext.deep-nesting)
