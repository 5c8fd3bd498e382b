#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "dynamic_library/DynamicLibrary.h"

namespace dynamic_library {
namespace {

TEST(GlobalSymbols, AreFoundByLaterLibraries) {
    const DynamicLibrary answering(ANSWERING_LIBRARY, Symbols::global);
    const DynamicLibrary asking(ASKING_LIBRARY);
    const auto asked = reinterpret_cast<int (*)()>(asking.symbol("asked"));
    ASSERT_NE(asked, nullptr);
    EXPECT_EQ(asked(), 43);
}

TEST(LocalSymbols, AreNotFoundByLaterLibraries) {
    const DynamicLibrary answering(ANSWERING_LIBRARY);
    try {
        const DynamicLibrary asking(ASKING_LIBRARY);
        FAIL() << "it found the symbol";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("answer"), std::string::npos) << error.what();
    }
}

}  // namespace
}  // namespace dynamic_library
