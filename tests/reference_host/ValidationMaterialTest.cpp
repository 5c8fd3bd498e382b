#include <string>

#include <gtest/gtest.h>

#include "host/validation.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

Holder<KOR::IDmBaseObj> make(const std::filesystem::path& file, const std::string& directory) {
    return hold(createValidationMaterial(file.c_str(), directory.c_str()));
}

TEST(ValidationMaterial, IsTheMaterialOfTheFile) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 10);
    const auto material = make(file, "");
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(material->refCount(), 1U);
    EXPECT_EQ(mediaOf(material).getFileName(), file.string());
    EXPECT_EQ(mediaOf(material).getDuration(), 4000000);
    EXPECT_STREQ(sourceOf(material).getMediaInfoText("media_cache"), "");
}

TEST(ValidationMaterial, CacheLiesBelowTheDirectory) {
    const FootageFiles files;
    const std::string directory = files.path("").string();
    const auto material = make(files.makeVideo("a.mp4", 10), directory);
    ASSERT_NE(material, nullptr);
    const std::string cache = sourceOf(material).getMediaInfoText("media_cache");
    EXPECT_EQ(cache.substr(0, directory.size()), directory);
    EXPECT_GT(cache.size(), directory.size());
}

TEST(ValidationMaterial, IsNullWhereTheFileIsNone) {
    const FootageFiles files;
    EXPECT_EQ(make(files.path("missing.mp4"), ""), nullptr);
    EXPECT_EQ(make(files.write("text.mp4", "no video"), ""), nullptr);
    EXPECT_EQ(createValidationMaterial(nullptr, ""), nullptr);
    EXPECT_EQ(createValidationMaterial("a.mp4", nullptr), nullptr);
}

}  // namespace
}  // namespace reference_host_tests
