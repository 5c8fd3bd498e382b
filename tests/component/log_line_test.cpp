#include <gtest/gtest.h>

#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using LogLines = ComponentTest;

TEST_F(LogLines, GoOnBehindATextThatIsNull) {
    const char* const none = nullptr;
    KOR::logLine("KOR::KorMaterialAnalysis::test", "name: ", none, " begin: ", 1);
    EXPECT_EQ(logTexts(), Lines{"name:  begin: 1"});
}

}  // namespace
}  // namespace fake_host
