#include <limits>
#include <random>

#include "validator/component/groups.h"
#include "validator/component/kept.h"

namespace validator {
namespace {

constexpr const char* invalid = "cache result invalidate";

KOR::MaterialAnalysisResult recordWith(Stage& stage, const std::string& members) {
    return only(expectTaken(stage, keptRecord(members)));
}

void expectRect(Stage& stage, const std::string& text, const std::vector<double>& values) {
    const KOR::KorRect rect =
        recordWith(stage, "\"faceRectOfPhoto\": \"" + text + "\"").faceRectOfPhoto;
    expectEqual("the rectangle of " + shown(text),
                std::vector<double>{rect.x, rect.y, rect.width, rect.height}, values);
}

void expectAllInvalid(Stage& stage, const std::vector<std::string>& texts) {
    for (const std::string& text : texts)
        expectRefused(stage, text, invalid);
}

void readsScoresBack(Stage& stage) {
    std::mt19937_64 random(stage.occasion().seed);
    std::uniform_real_distribution<double> scores(0.0, 1.0);
    std::string list;
    std::vector<double> expected;
    for (int i = 0; i < 500; ++i) {
        expected.push_back(scores(random));
        list += (list.empty() ? "{\"score\": " : ", {\"score\": ") + shown(expected.back()) + "}";
    }
    const Records records = expectTaken(stage, KeptText{.result = "[" + list + "]"}.text());
    expectEqual("the number of records", records.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        expectReadBack(records[i].score, expected[i]);
}

void readsManyRecords(Stage& stage) {
    constexpr std::int64_t count = 20000;
    std::string list;
    for (std::int64_t i = 0; i < count; ++i) {
        list += (i == 0 ? "" : ",\n") + std::string("        {\n            \"begin\": ") +
                std::to_string(i) + "\n        }";
    }
    const Records records = expectTaken(stage, KeptText{.result = "[" + list + "]"}.text());
    expectEqual("the number of records", records.size(), count);
    for (std::int64_t i = 0; i < count; ++i)
        expectEqual("the begin", records[static_cast<std::size_t>(i)].begin, i);
}

void refusesAllBeginnings(Stage& stage) {
    const std::string whole = KeptText().text();
    for (std::size_t length = 0; length < whole.size(); ++length)
        expectRefused(stage, whole.substr(0, length), invalid);
}

void takesAnyWhitespace(Stage& stage) {
    std::string text = "\t\r\n " + KeptText().text() + " \r\n\t\n";
    for (std::size_t at = text.find(' '); at != std::string::npos; at = text.find(' ', at + 4))
        text.replace(at, 1, "\r\n\t ");
    expectEqual("the number of records", expectTaken(stage, text).size(), 1);
}

/// Files that a failed write of the component's own can leave.
void refusesMissingNumbers(Stage& stage) {
    expectAllInvalid(stage, {KeptText{.scenceDetectionThreshold = " "}.text(),
                             keptRecord(R"("score": , "begin": 1)"), keptRecord(R"("score":)"),
                             keptRecord(R"("score": nan)"), keptRecord(R"("score": Infinity)")});
}

void survivesDepth(Stage& stage) {
    expectRefused(stage, std::string(1000000, '['), invalid);
    std::string text = "{\"version\":";
    text.append(1000000, '[');
    expectRefused(stage, text, invalid);
}

void readsExtremes(Stage& stage) {
    const auto record = recordWith(
        stage, R"("begin": -9223372036854775808, "end": 9223372036854775807, "posOfMaxScore": -1)");
    using Limits = std::numeric_limits<std::int64_t>;
    expectEqual("begin, end and position",
                std::vector<std::int64_t>{record.begin, record.end, record.posOfMaxScore},
                {Limits::min(), Limits::max(), -1});
}

}  // namespace

const std::vector<ComponentCheck> restoretextChecks = {
    {"restoretext.no-result-is-none", "A file without a result is taken as one without records.",
     [](Stage& stage) {
         expectEqual("the number of records",
                     expectTaken(stage, KeptText{.result = ""}.text()).size(), 0);
     }},
    {"restoretext.empty-result-is-none", "A file whose result is empty is taken, with no record.",
     [](Stage& stage) {
         expectEqual("the number of records",
                     expectTaken(stage, KeptText{.result = "[]"}.text()).size(), 0);
     }},
    {"restoretext.missing-members-are-zero", "A member that a record lacks is zero.",
     [](Stage& stage) {
         const auto record = recordWith(stage, "");
         expectEqual("the score", record.score, 0.0);
         expectEqual("begin, end and position",
                     std::vector<std::int64_t>{record.begin, record.end, record.posOfMaxScore},
                     {0, 0, 0});
         const KOR::KorRect& rect = record.faceRectOfPhoto;
         expectEqual("the rectangle", std::vector{rect.x, rect.y, rect.width, rect.height},
                     {0, 0, 0, 0});
     }},
    {"restoretext.members-in-any-order", "The order of members, and unknown ones, do not matter.",
     [](Stage& stage) {
         const Records records = expectTaken(
             stage, R"({"result": [{"new": [{}], "end": 9, "begin": 4}], "minScenceDuration": 2,
                       "other": null, "scenceDetectionThreshold": 3.0, "analysisTypes": "4,3",
                       "version": "1.0.0.1"})");
         expectEqual("the end", only(records).end, 9);
         expectEqual("the begin", only(records).begin, 4);
     }},
    {"restoretext.whole-score-is-converted", "A score without a point is read as a double.",
     [](Stage& stage) {
         expectEqual("the score", recordWith(stage, R"("score": -3)").score, -3.0);
     }},
    {"restoretext.scores-are-read-back", "A score is read as the double that its text was made of.",
     readsScoresBack},
    {"restoretext.integers-to-their-limits", "Integers are read in full up to their limits.",
     readsExtremes},
    {"restoretext.rectangle-is-truncated",
     "Of each value of a rectangle the whole number alone is read, toward zero.",
     [](Stage& stage) {
         expectRect(stage, "12.500000,-3.750000,0.250000,1.000000", {12, -3, 0, 1});
         expectRect(stage, "0.999999,-0.5,100,+7.9", {0, 0, 100, 7});
     }},
    {"restoretext.rectangle-of-three-is-zero", "A rectangle of fewer than four values stays zero.",
     [](Stage& stage) {
         for (const char* const text : {"1,2,3", "1", ""})
             expectRect(stage, text, {0, 0, 0, 0});
     }},
    {"restoretext.rectangle-of-five-is-of-four",
     "Values behind the fourth of a rectangle do not "
     "count.",
     [](Stage& stage) {
         expectRect(stage, "1,2,3,4,5", {1, 2, 3, 4});
     }},
    {"restoretext.rectangle-values-without-number",
     "A value of a rectangle that begins with no number is 0, and what stands behind one does not "
     "count.",
     [](Stage& stage) {
         expectRect(stage, "x1, 2,3x,4 5", {0, 2, 3, 4});
     }},
    {"restoretext.many-records-in-order", "A file of many records gives all of them in order.",
     readsManyRecords},
    {"restoretext.any-whitespace",
     "Blanks, tabs, line feeds and carriage returns may stand between "
     "all parts.",
     takesAnyWhitespace},
    {"restoretext.nothing-at-all", "An empty file, or one of whitespace, is refused and deleted.",
     [](Stage& stage) {
         expectAllInvalid(stage, {"", " ", "\n", " \t\r\n "});
     }},
    {"restoretext.truncated", "A file that ends before its last brace is refused and deleted.",
     refusesAllBeginnings},
    {"restoretext.anything-behind", "A file with anything behind its root is refused and deleted.",
     [](Stage& stage) {
         const std::string whole = KeptText().text();
         expectAllInvalid(stage, {whole + "x", whole + "}", whole + "{}", whole + ",",
                                  whole + std::string(1, '\0')});
     }},
    {"restoretext.comments", "A file with comments is refused and deleted.",
     [](Stage& stage) {
         const std::string whole = KeptText().text();
         expectAllInvalid(stage, {whole + "// end", "/* begin */" + whole, "//\n" + whole});
     }},
    {"restoretext.byte-order-mark", "A file that begins with a byte-order mark is refused.",
     [](Stage& stage) { expectAllInvalid(stage, {"\xEF\xBB\xBF" + KeptText().text()}); }},
    {"restoretext.other-syntax",
     "Single quotes, commas behind the last member and keys without quotes are refused.",
     [](Stage& stage) {
         expectAllInvalid(stage,
                          {"{'version': '1.0.0.1'}", "{version: \"1.0.0.1\"}",
                           KeptText{.result = "[],"}.text(), KeptText{.result = "[{},]"}.text()});
     }},
    {"restoretext.number-left-out", "A file in which a number is missing is refused and deleted.",
     refusesMissingNumbers},
    {"restoretext.root-is-no-object", "A file whose root is no object is refused and deleted.",
     [](Stage& stage) {
         expectAllInvalid(
             stage, {"null", "[]", "1", "true", "\"1.0.0.1\"", "[" + KeptText().text() + "]"});
     }},
    {"restoretext.setting-of-other-type",
     "A file with a setting of the wrong type is refused and deleted.",
     [](Stage& stage) {
         expectAllInvalid(stage,
                          {KeptText{.version = "1"}.text(), KeptText{.version = "null"}.text(),
                           KeptText{.analysisTypes = "[4,3]"}.text(),
                           KeptText{.minScenceDuration = "\"2\""}.text(),
                           KeptText{.scenceDetectionThreshold = "\"3.0\""}.text()});
     }},
    {"restoretext.result-is-no-array", "A file whose result is no array is refused and deleted.",
     [](Stage& stage) {
         for (const char* const result : {"{}", "null", "1", "\"[]\""})
             expectRefused(stage, KeptText{.result = result}.text(), invalid);
     }},
    {"restoretext.record-is-no-object",
     "A file with a record that is no object is refused, and none of its records is taken.",
     [](Stage& stage) {
         for (const char* const result : {"[{}, 1]", "[null]", "[[]]", "[{}, \"\"]"})
             expectRefused(stage, KeptText{.result = result}.text(), invalid);
     }},
    {"restoretext.member-of-other-type",
     "A file with a record's member of the wrong type is refused, a fractional tick too.",
     [](Stage& stage) {
         for (const char* const members :
              {R"("score": "0.5")", R"("begin": 1.5)", R"("end": "3")", R"("posOfMaxScore": null)",
               R"("begin": 9223372036854775808)", R"("faceRectOfPhoto": [1, 2, 3, 4])"})
             expectRefused(stage, keptRecord(members), invalid);
     }},
    {"restoretext.deep-nesting", "A file nested a million deep is refused, and nothing crashes.",
     survivesDepth},
};

}  // namespace validator
