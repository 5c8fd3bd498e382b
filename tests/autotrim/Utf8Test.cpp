#include <gtest/gtest.h>

#include "autotrim/Utf8.h"

namespace autotrim {
namespace {

const std::string replacement = "\xEF\xBF\xBD";

TEST(Utf8, KeepsWhatIsValid) {
    for (const char* text : {"", "clip.mp4", "\xC3\xA9t\xC3\xA9", "\xE7\x9F\xAD\xE7\x89\x87",
                             "\xF0\x9F\x8E\xAC", "\xF4\x8F\xBF\xBF", "\xED\x9F\xBF"}) {
        EXPECT_EQ(validUtf8(text), text);
    }
}

TEST(Utf8, ReplacesBytesThatBeginNothing) {
    EXPECT_EQ(validUtf8("a\xFFz"), "a" + replacement + "z");
    EXPECT_EQ(validUtf8("\x80\xBF"), replacement + replacement);
    EXPECT_EQ(validUtf8("\xC0\xAF"), replacement + replacement);
    EXPECT_EQ(validUtf8("\xF5\x80"), replacement + replacement);
}

TEST(Utf8, ReplacesABrokenSequenceAsOne) {
    EXPECT_EQ(validUtf8("\xE2\x82"), replacement);
    EXPECT_EQ(validUtf8("\xF0\x9F\x8Ez"), replacement + "z");
    EXPECT_EQ(validUtf8("\xC3("
                        "\xC3"),
              replacement + "(" + replacement);
}

TEST(Utf8, ReplacesOverlongAndForbiddenForms) {
    EXPECT_EQ(validUtf8("\xE0\x80\x80"), replacement + replacement + replacement);
    EXPECT_EQ(validUtf8("\xED\xA0\x80"), replacement + replacement + replacement);
    EXPECT_EQ(validUtf8("\xF4\x90\x80\x80"), replacement + replacement + replacement + replacement);
}

TEST(Utf8, PrintsControlCharactersAsText) {
    EXPECT_EQ(printable("a\x1B[2Jb\r\n\t\x7F"), "a\\x1B[2Jb\\x0D\\x0A\\x09\\x7F");
    EXPECT_EQ(printable("\xC2\x9B"), "\\xC2\\x9B");
    EXPECT_EQ(printable("\xFF"), "\\xFF");
}

TEST(Utf8, PrintsMarksOfWritingDirectionAsText) {
    EXPECT_EQ(printable("a\xE2\x80\xAE"
                        "4pm"),
              "a\\xE2\\x80\\xAE4pm");
    EXPECT_EQ(printable("\xE2\x81\xA6"), "\\xE2\\x81\\xA6");
    EXPECT_EQ(printable("\xE2\x80\xA8"), "\\xE2\\x80\\xA8");
}

TEST(Utf8, PrintsOrdinaryNamesAsTheyAre) {
    EXPECT_EQ(printable("\xC3\xA9t\xC3\xA9 \xE7\x9F\xAD.mp4"),
              "\xC3\xA9t\xC3\xA9 \xE7\x9F\xAD.mp4");
    EXPECT_EQ(printable("a\\x1B"), "a\\\\x1B");
}

TEST(Utf8, CountsTwoColumnsWhereTheyMayBeNeeded) {
    EXPECT_EQ(columnsNeeded("abc"), 3U);
    EXPECT_EQ(columnsNeeded("\xC3\xA9"), 1U);
    EXPECT_EQ(columnsNeeded("\xE7\x9F\xAD\xF0\x9F\x8E\xAC"), 4U);
}

TEST(Utf8, FitsByKeepingTheEnd) {
    EXPECT_EQ(fittedTail("clip.mp4", 8), "clip.mp4");
    EXPECT_EQ(fittedTail("my-clip.mp4", 8), "...p.mp4");
    EXPECT_EQ(fittedTail("\xE7\x9F\xAD\xE7\x89\x87.mp4", 7), "....mp4");
    EXPECT_EQ(fittedTail("clip", 2), "..");
    EXPECT_EQ(fittedTail("clip", 0), "");
}

}  // namespace
}  // namespace autotrim
