#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <unistd.h>

#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

namespace fs = std::filesystem;
using reference_host::CachedMaterial;
using reference_host::CacheListing;
using reference_host::clearCache;
using reference_host::ClearedCache;
using reference_host::listCache;

const std::string someKey = "0123456789abcdef0123456789abcdef";

/// A cache, with materials and with whatever else a test puts there.
class CacheContent : public testing::Test {
protected:
    fs::path root() const { return files.path("cache"); }

    /// Imports a new video; returns its directory in the cache.
    fs::path importVideo(const std::string& name, int frames) const {
        return sourceOf(import(files.makeVideo(name, frames), root()))
            .getMediaInfoText("media_cache");
    }

    /// Makes a file in the cache, and the directories above it.
    fs::path put(const fs::path& name, const std::string& bytes) const {
        fs::create_directories((root() / name).parent_path());
        return files.write("cache/" + name.string(), bytes);
    }

    /// What stands in the cache, links as themselves.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(root()))
            found.push_back(fs::relative(entry.path().parent_path(), root()) /
                            entry.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }

    FootageFiles files;
};

/// Lets this thread have the rights of nobody in files, where it has all of them.
class WithoutPrivileges {
public:
    WithoutPrivileges() {
        if (::geteuid() == 0) ::setfsuid(nobody);
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
    ~WithoutPrivileges() {
        if (::geteuid() == 0) ::setfsuid(0);
    }

private:
    static constexpr uid_t nobody = 65534;
};

TEST_F(CacheContent, NothingIsListedOfWhatIsNotThere) {
    EXPECT_TRUE(listCache(root()).materials.empty());
    EXPECT_TRUE(listCache({}).materials.empty());
    const ClearedCache cleared = clearCache(root());
    EXPECT_EQ(cleared.materials, 0U);
    EXPECT_EQ(cleared.sizeBytes, 0U);
    EXPECT_TRUE(cleared.failures.empty());
    EXPECT_FALSE(fs::exists(root()));
}

TEST_F(CacheContent, RootThatIsNoDirectoryIsNamed) {
    files.write("cache", "a file");
    for (const auto& action : {+[](const fs::path& root) { listCache(root); },
                               +[](const fs::path& root) { clearCache(root); }}) {
        try {
            action(root());
            ADD_FAILURE() << "not refused";
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(root().string()), std::string::npos)
                << error.what();
        }
    }
    EXPECT_EQ(contentOf(root()), "a file");
}

TEST_F(CacheContent, MaterialsAreListedByTheirFiles) {
    const fs::path b = importVideo("b.mp4", 10);
    const fs::path a = importVideo("a.mp4", 20);
    fs::create_directory(b / "analysis");
    files.write(fs::relative(b, files.path("")) / "analysis/result.json", "{ }");
    const std::vector<CachedMaterial> listed = listCache(root()).materials;
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0].file, files.path("a.mp4").string());
    EXPECT_EQ(listed[0].sizeBytes, fs::file_size(a / "facts.json"));
    EXPECT_FALSE(listed[0].hasResult);
    EXPECT_EQ(listed[1].file, files.path("b.mp4").string());
    EXPECT_EQ(listed[1].sizeBytes, fs::file_size(b / "facts.json") + 3);
    EXPECT_TRUE(listed[1].hasResult);
}

TEST_F(CacheContent, MaterialOfAMovedFileHasItsNewPath) {
    importVideo("a.mp4", 10);
    fs::rename(files.path("a.mp4"), files.path("b.mp4"));
    import(files.path("b.mp4"), root());
    const std::vector<CachedMaterial> listed = listCache(root()).materials;
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed[0].file, files.path("b.mp4").string());
}

TEST_F(CacheContent, MaterialWhoseFactsAreLostHasNoFile) {
    put(someKey + "/analysis/result.json", "{ }");
    put(someKey + "/facts.json", "no facts");
    const std::vector<CachedMaterial> listed = listCache(root()).materials;
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed[0].file, "");
    EXPECT_EQ(listed[0].sizeBytes, 11U);
    EXPECT_TRUE(listed[0].hasResult);
}

TEST_F(CacheContent, ClearingLeavesAnEmptyRoot) {
    const fs::path a = importVideo("a.mp4", 10);
    importVideo("b.mp4", 20);
    put(a.filename() / "analysis/result.json", "{ }");
    put(someKey + "/facts.json.unfinished-Ab1Cd2", "{");
    std::uintmax_t size = 0;
    for (const CachedMaterial& material : listCache(root()).materials)
        size += material.sizeBytes;
    const ClearedCache cleared = clearCache(root());
    EXPECT_EQ(cleared.materials, 3U);
    EXPECT_EQ(cleared.sizeBytes, size);
    EXPECT_TRUE(cleared.failures.empty());
    EXPECT_TRUE(fs::is_empty(root()));
    EXPECT_TRUE(listCache(root()).materials.empty());
    EXPECT_TRUE(fs::exists(files.path("a.mp4")));
}

TEST_F(CacheContent, DirectoryThatAKilledWriterLeftEmptyIsDeleted) {
    fs::create_directories(root() / someKey / "analysis");
    const ClearedCache cleared = clearCache(root());
    EXPECT_TRUE(fs::is_empty(root()));
    EXPECT_EQ(cleared.materials, 0U) << "nothing was kept of any";
}

TEST_F(CacheContent, ThingsOfOthersStay) {
    const std::string upper = "0123456789ABCDEF0123456789ABCDEF";
    put("notes.txt", "mine");
    put("facts.json", "mine");
    put("analysis/result.json", "mine");
    put("photos/facts.json", "mine");
    put(upper + "/facts.json", "mine");
    put(someKey + "0/analysis/result.json", "mine");
    put(someKey.substr(1), "mine");
    put(someKey + "/notes.txt", "mine");
    put(someKey + "/facts.json.bak", "mine");
    put(someKey + "/facts.json.unfinished-", "mine");
    put(someKey + "/result.json", "mine");
    put(someKey + "/analysis/facts.json", "mine");
    put(someKey + "/deeper/analysis/result.json", "mine");
    const std::vector<std::string> before = names();
    put(someKey + "/facts.json", "ours");
    put(someKey + "/analysis/result.json", "ours");
    EXPECT_EQ(listCache(root()).materials.size(), 1U);
    const ClearedCache cleared = clearCache(root());
    EXPECT_EQ(names(), before);
    EXPECT_EQ(cleared.materials, 1U);
    EXPECT_EQ(cleared.sizeBytes, 8U);
    EXPECT_TRUE(cleared.failures.empty());
}

TEST_F(CacheContent, ThingsOfOtherKindsStay) {
    fs::create_directories(root() / someKey / "facts.json");
    fs::create_directories(root() / someKey / "analysis" / "result.json");
    const std::vector<std::string> before = names();
    EXPECT_TRUE(listCache(root()).materials.empty());
    EXPECT_TRUE(clearCache(root()).failures.empty());
    EXPECT_EQ(names(), before);
}

TEST_F(CacheContent, LinksStayAndLeadNowhere) {
    fs::create_directory(files.path("outside"));
    const fs::path facts = files.write("outside/facts.json", "mine");
    fs::create_directory(files.path("outside/analysis"));
    const fs::path result = files.write("outside/analysis/result.json", "mine");
    fs::create_directories(root() / someKey);
    const std::string otherKey = "f" + someKey.substr(1);
    fs::create_directory_symlink(files.path("outside"), root() / otherKey);
    fs::create_directory_symlink(files.path("outside/analysis"), root() / someKey / "analysis");
    fs::create_symlink(facts, root() / someKey / "facts.json");
    const std::vector<std::string> before = names();
    EXPECT_TRUE(listCache(root()).materials.empty());
    const ClearedCache cleared = clearCache(root());
    EXPECT_EQ(names(), before);
    EXPECT_EQ(contentOf(facts), "mine");
    EXPECT_EQ(contentOf(result), "mine");
    EXPECT_EQ(cleared.sizeBytes, 0U);
    EXPECT_TRUE(cleared.failures.empty());
}

TEST_F(CacheContent, RootMayBeALink) {
    importVideo("a.mp4", 10);
    fs::create_directory_symlink(root(), files.path("link"));
    EXPECT_EQ(listCache(files.path("link")).materials.size(), 1U);
    EXPECT_EQ(clearCache(files.path("link")).materials, 1U);
    EXPECT_TRUE(fs::is_empty(root()));
    EXPECT_TRUE(fs::is_symlink(files.path("link")));
}

TEST_F(CacheContent, WhatMayNotBeDeletedIsReported) {
    const fs::path kept = importVideo("a.mp4", 10);
    const fs::path gone = importVideo("b.mp4", 20);
    // Nobody is to be stopped by that directory alone.
    fs::permissions(files.path(""), fs::perms::all);
    for (const fs::path& open : {root(), gone})
        fs::permissions(open, fs::perms::all);
    fs::permissions(kept, fs::perms(0555));
    ClearedCache cleared;
    {
        const WithoutPrivileges thread;
        cleared = clearCache(root());
    }
    fs::permissions(kept, fs::perms::all);
    EXPECT_EQ(cleared.materials, 1U);
    EXPECT_FALSE(fs::exists(gone));
    ASSERT_EQ(cleared.failures.size(), 1U);
    EXPECT_EQ(cleared.failures[0], (kept / "facts.json").string() + ": Permission denied");
    EXPECT_TRUE(fs::exists(kept / "facts.json"));
}

TEST_F(CacheContent, WhatMayNotBeReadIsReported) {
    const fs::path closed = importVideo("a.mp4", 10);
    fs::permissions(files.path(""), fs::perms::all);
    fs::permissions(root(), fs::perms::all);
    fs::permissions(closed, fs::perms::none);
    CacheListing listing;
    ClearedCache cleared;
    {
        const WithoutPrivileges thread;
        listing = listCache(root());
        cleared = clearCache(root());
    }
    fs::permissions(closed, fs::perms::all);
    EXPECT_TRUE(listing.materials.empty());
    EXPECT_EQ(listing.failures, cleared.failures);
    EXPECT_EQ(cleared.materials, 0U);
    ASSERT_EQ(cleared.failures.size(), 1U);
    EXPECT_EQ(cleared.failures[0], closed.string() + ": Permission denied");
    EXPECT_TRUE(fs::exists(closed / "facts.json"));
}

TEST_F(CacheContent, RootThatMayNotBeReadIsNamed) {
    fs::create_directory(root());
    fs::permissions(files.path(""), fs::perms::all);
    fs::permissions(root(), fs::perms::none);
    {
        const WithoutPrivileges thread;
        EXPECT_THROW(listCache(root()), std::runtime_error);
        EXPECT_THROW(clearCache(root()), std::runtime_error);
    }
    fs::permissions(root(), fs::perms::all);
}

}  // namespace
}  // namespace reference_host_tests
