#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "dynamic_library/DynamicLibrary.h"

namespace dynamic_library {
namespace {

using Function = int (*)();

/// What loading `file` throws; empty when it throws nothing.
std::string failureOf(const std::filesystem::path& file) {
    try {
        const DynamicLibrary library(file);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

/// What is said behind "cannot load <file>: ".
std::string reasonOf(const std::filesystem::path& file) {
    std::filesystem::path name = std::filesystem::absolute(file);
    const std::string opening = "cannot load " + name.make_preferred().string() + ": ";
    const std::string text = failureOf(file);
    EXPECT_EQ(text.substr(0, opening.size()), opening);
    return text.size() < opening.size() ? "" : text.substr(opening.size());
}

TEST(DynamicLibrary, GivesWhatItExports) {
    const DynamicLibrary library(ANSWERING_LIBRARY);
    const auto answer = reinterpret_cast<Function>(library.symbol("answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
}

TEST(DynamicLibrary, GivesNullForWhatItHasNot) {
    const DynamicLibrary library(ANSWERING_LIBRARY);
    EXPECT_EQ(library.symbol("question"), nullptr);
    EXPECT_EQ(library.symbol(""), nullptr);
}

TEST(DynamicLibrary, MovesWithItsSymbols) {
    DynamicLibrary first(ANSWERING_LIBRARY);
    const DynamicLibrary second(std::move(first));
    EXPECT_NE(second.symbol("answer"), nullptr);
}

TEST(DynamicLibrary, ThatIsMissingIsNamedWithAReason) {
    EXPECT_GT(reasonOf("no such library").size(), 10U);
}

TEST(DynamicLibrary, ThatIsNoneIsNamedWithAReason) {
    EXPECT_GT(reasonOf(__FILE__).size(), 10U);
}

}  // namespace
}  // namespace dynamic_library
