#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "validator/check/shown.h"

namespace validator {
namespace {

TEST(Shown, QuotesTextsOnOneLine) {
    EXPECT_EQ(shown("plain"), "\"plain\"");
    EXPECT_EQ(shown("a\n\"b\"\t\\\r"), R"("a\n\"b\"\t\\\r")");
    EXPECT_EQ(shown(static_cast<const char*>(nullptr)), "null");
}

TEST(Shown, KeepsWhatIsUtf8AndEscapesTheRest) {
    EXPECT_EQ(shown("素材idx"), "\"素材idx\"");
    EXPECT_EQ(shown("\xff\x41"), R"("\xFFA")");
    EXPECT_EQ(shown("\xe7\xb4"), R"("\xE7\xB4")");
    EXPECT_EQ(shown("\x7f\x01"), R"("\x7F\x01")");
}

TEST(Shown, GivesNumbersThatReadBack) {
    EXPECT_EQ(shown(0.1), "0.1");
    EXPECT_EQ(shown(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(shown(true), "true");
    EXPECT_EQ(shown(std::vector<int>{1, 2}), "{1, 2}");
    EXPECT_EQ(shown(std::vector<double>{}), "{}");
}

}  // namespace
}  // namespace validator
