#include <stdexcept>

#include <gtest/gtest.h>

#include "autotrim/ComponentLibrary.h"

namespace autotrim {
namespace {

std::string failureOf(const std::filesystem::path& file) {
    try {
        const ComponentLibrary library(file);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(ComponentLibrary, IsFoundBesideTheProgramsDirectory) {
    const auto file = findComponentLibrary();
    EXPECT_EQ(file.filename(), "libMaterialAnalysis.so.1");
    EXPECT_EQ(file.parent_path().filename(), "lib");
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST(ComponentLibrary, NamesAFileThatCannotBeLoaded) {
    const std::string failure = failureOf("/missing/libMaterialAnalysis.so");
    EXPECT_EQ(failure.find("cannot load the component: /missing/libMaterialAnalysis.so"), 0U)
        << failure;
}

TEST(ComponentLibrary, RefusesALibraryWithoutTheFactory) {
    EXPECT_EQ(failureOf("libm.so.6"),
              "cannot use the component: libm.so.6 does not export createMaterialAnalysis");
}

}  // namespace
}  // namespace autotrim
