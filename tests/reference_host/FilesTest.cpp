#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "host/files.h"
#include "tests/reference_host/TemporaryDirectory.h"

namespace reference_host_tests {
namespace {

using KOR::Path;

std::string joined(const char* base, const char* tail) {
    return KOR::PathUtil::join(Path(base), Path(tail)).string();
}

TEST(Files, PathKeepsItsText) {
    EXPECT_EQ(Path("/tmp/素材").string(), "/tmp/素材");
    EXPECT_EQ(Path(static_cast<const char*>(nullptr)).string(), "");
}

TEST(Files, JoinPutsExactlyOneSlashBetween) {
    EXPECT_EQ(joined("/cache", "/analysis"), "/cache/analysis");
    EXPECT_EQ(joined("/cache", "analysis"), "/cache/analysis");
    EXPECT_EQ(joined("/cache/", "/analysis"), "/cache/analysis");
    EXPECT_EQ(joined("/cache//", "//analysis"), "/cache/analysis");
    EXPECT_EQ(joined("/", "analysis"), "/analysis");
}

TEST(Files, JoinWithAnEmptySideGivesTheOther) {
    EXPECT_EQ(joined("", "/analysis"), "/analysis");
    EXPECT_EQ(joined("/cache", ""), "/cache");
    EXPECT_EQ(joined("", ""), "");
}

TEST(Files, CreateMakesAllMissingDirectories) {
    const TemporaryDirectory directory;
    const Path wanted((directory / "a/b/c").string());
    EXPECT_FALSE(KOR::PathUtil::exists(wanted));
    EXPECT_TRUE(KOR::DirUtil::create(wanted));
    EXPECT_TRUE(KOR::PathUtil::exists(wanted));
    EXPECT_TRUE(KOR::DirUtil::create(wanted)) << "it stands there already";
}

TEST(Files, CreateFailsWhereAFileStands) {
    const TemporaryDirectory directory;
    std::ofstream(directory / "file") << "text";
    EXPECT_FALSE(KOR::DirUtil::create(Path((directory / "file").string())));
    EXPECT_FALSE(KOR::DirUtil::create(Path((directory / "file/below").string())));
    EXPECT_FALSE(KOR::DirUtil::create(Path("")));
}

TEST(Files, RemoveDeletesFilesOnly) {
    const TemporaryDirectory directory;
    std::ofstream(directory / "file") << "text";
    EXPECT_TRUE(KOR::FileUtil::remove(Path((directory / "file").string())));
    EXPECT_FALSE(KOR::PathUtil::exists(Path((directory / "file").string())));
    EXPECT_FALSE(KOR::FileUtil::remove(Path((directory / "file").string())));
    EXPECT_FALSE(KOR::FileUtil::remove(Path(directory.path().string())));
    EXPECT_TRUE(KOR::PathUtil::exists(Path(directory.path().string())));
}

TEST(Files, RemoveTakesALinkNotItsTarget) {
    const TemporaryDirectory directory;
    std::ofstream(directory / "file") << "text";
    std::filesystem::create_symlink(directory / "file", directory / "link");
    EXPECT_TRUE(KOR::FileUtil::remove(Path((directory / "link").string())));
    EXPECT_TRUE(std::filesystem::exists(directory / "file"));
}

TEST(Files, SplitKeepsEmptyParts) {
    using Parts = std::vector<std::string>;
    EXPECT_EQ(KOR::StringUtil::split("a,,b", ','), (Parts{"a", "", "b"}));
    EXPECT_EQ(KOR::StringUtil::split("", ','), (Parts{""}));
    EXPECT_EQ(KOR::StringUtil::split(",", ','), (Parts{"", ""}));
    EXPECT_EQ(KOR::StringUtil::split("4,3,1", ','), (Parts{"4", "3", "1"}));
}

TEST(Files, TextLengthOfNullIsZero) {
    EXPECT_EQ(kor_strlen(nullptr), 0U);
    EXPECT_EQ(kor_strlen(""), 0U);
    EXPECT_EQ(kor_strlen("素材"), 6U);
}

}  // namespace
}  // namespace reference_host_tests
