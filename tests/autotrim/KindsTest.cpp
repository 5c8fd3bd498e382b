#include <stdexcept>

#include <gtest/gtest.h>

#include "autotrim/Kinds.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace autotrim {
namespace {

std::string reasonOf(const std::string& text) {
    try {
        return whyUnusable(parseKinds(text));
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

TEST(Kinds, ReadsNumbersJoinedByCommas) {
    EXPECT_EQ(parseKinds("4,3"), (Kinds{4, 3}));
    EXPECT_EQ(parseKinds("6"), (Kinds{6}));
    EXPECT_EQ(parseKinds("-4,12"), (Kinds{-4, 12}));
}

TEST(Kinds, RefusesWhatIsNoNumber) {
    EXPECT_EQ(reasonOf(""), "\"\" is not a whole number");
    EXPECT_EQ(reasonOf("4,"), "\"\" is not a whole number");
    EXPECT_EQ(reasonOf(",4"), "\"\" is not a whole number");
    EXPECT_EQ(reasonOf("4, 3"), "\" 3\" is not a whole number");
    EXPECT_EQ(reasonOf("4,3x"), "\"3x\" is not a whole number");
    EXPECT_EQ(reasonOf("4;3"), "\"4;3\" is not a whole number");
    EXPECT_EQ(reasonOf("4.0,3"), "\"4.0\" is not a whole number");
}

TEST(Kinds, RefusesValuesOutsideOneToSeven) {
    EXPECT_EQ(reasonOf("0,6"), "0 is no kind of analysis: they are 1 to 7");
    EXPECT_EQ(reasonOf("4,3,8"), "8 is no kind of analysis: they are 1 to 7");
    EXPECT_EQ(reasonOf("-4,3"), "-4 is no kind of analysis: they are 1 to 7");
    EXPECT_EQ(reasonOf("4,99999999999"), "99999999999 is no kind of analysis: they are 1 to 7");
}

TEST(Kinds, RefusesASingleKind) {
    EXPECT_EQ(reasonOf("6"), "a single kind gives no records: list at least two");
    EXPECT_EQ(reasonOf("4"), "a single kind gives no records: list at least two");
}

TEST(Kinds, RefusesListsWithoutKeyFramesInScenes) {
    const std::string reason = "nothing finds keyframes inside scenes: list 6, or 3 after 4";
    EXPECT_EQ(reasonOf("4,2"), reason);
    EXPECT_EQ(reasonOf("3,4"), reason);
    EXPECT_EQ(reasonOf("3,3"), reason);
    EXPECT_EQ(reasonOf("1,2"), reason);
}

TEST(Kinds, RefusesWhatNeedsKeyFramesTooEarly) {
    const std::string reason =
        " stands before the keyframes that it needs: list it after 6, or after 3 that follows 4";
    EXPECT_EQ(reasonOf("1,4,3"), "1" + reason);
    EXPECT_EQ(reasonOf("4,5,3"), "5" + reason);
    EXPECT_EQ(reasonOf("4,7,3"), "7" + reason);
    EXPECT_EQ(reasonOf("3,4,3"), "3" + reason);
    EXPECT_EQ(reasonOf("3,6"), "3" + reason);
    EXPECT_EQ(reasonOf("2,1,6"), "1" + reason);
}

TEST(Kinds, AcceptsListsThatGiveRecords) {
    for (const char* text :
         {"4,3", "4,3,1", "4,3,5", "4,3,7",   "4,2,3", "2,4,3", "4,4,3", "4,3,3", "6,1", "2,6",
          "4,6", "6,3",   "6,4",   "4,3,1,5", "6,6",   "6,7",   "6,2",   "4,3,2", "6,5", "6,7,1"}) {
        EXPECT_EQ(reasonOf(text), "") << text;
    }
}

/// Calls `check` with every list of `length` kinds.
template <typename Check>
void forEveryList(std::size_t length, Check check) {
    Kinds kinds(length, KOR::analysisKindFace);
    for (;;) {
        check(kinds);
        std::size_t last = length;
        while (last > 0 && kinds[last - 1] == KOR::analysisKindFaceAndEntropy)
            kinds[--last] = KOR::analysisKindFace;
        if (last == 0) return;
        ++kinds[last - 1];
    }
}

TEST(Kinds, NeverBeginWithOneThatPhotosRunForEver) {
    int accepted = 0;
    for (const std::size_t length : {1U, 2U, 3U, 4U}) {
        forEveryList(length, [&accepted](const Kinds& kinds) {
            if (!whyUnusable(kinds).empty()) return;
            ++accepted;
            EXPECT_NE(kinds[0], KOR::analysisKindFace);
            EXPECT_NE(kinds[0], KOR::analysisKindFaceAndEntropy);
        });
    }
    EXPECT_GT(accepted, 0);
}

}  // namespace
}  // namespace autotrim
