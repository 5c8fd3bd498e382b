#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <sys/stat.h>

#include "tests/component/RestoreTest.h"

namespace fake_host {
namespace {

/// What is different about files on these systems: there are links, pipes, devices, and files that
/// may not be read, names are any bytes, and a text ends with its file.
using ResultRestore = RestoreTest;
using OddResultFile = RestoreTest;

TEST_F(ResultRestore, OfATextWithAnEndMarkIsInvalid) {
    expectDeleted(ResultText{}.text() + "\x1a", "cache result invalidate");
}

TEST_F(ResultRestore, FindsTheFileUnderANameThatIsNoUtf8) {
    material.spec.mediaCache += "/\xff";
    ASSERT_TRUE(save({}));
    EXPECT_TRUE(
        std::filesystem::is_regular_file(material.spec.mediaCache + "/analysis/result.json"));
    EXPECT_TRUE(restore());
}

TEST_F(ResultRestore, OfAPipeDoesNotWaitForIt) {
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    expectRefusal("analysisCachePath open failed");
    EXPECT_FALSE(fileIsThere());
}

TEST_F(ResultRestore, OfADeviceIsRefused) {
    std::filesystem::create_symlink("/dev/null", file());
    expectRefusal("analysisCachePath open failed");
    EXPECT_FALSE(fileIsThere());
    EXPECT_TRUE(std::filesystem::exists("/dev/null"));
}

TEST_F(ResultRestore, FollowsALinkToAFile) {
    const auto target = host().directory() / "elsewhere.json";
    std::filesystem::create_symlink(target, file());
    EXPECT_EQ(restored(ResultText{}.text()).size(), 1U);
    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    expectDeleted("{}", "No version");
    EXPECT_EQ(contentOf(target), "{}");
}

TEST_F(ResultRestore, OfALinkToADirectoryIsRefusedAndLeavesBoth) {
    std::filesystem::create_directory_symlink(host().directory(), file());
    expectRefusal("analysisCachePath open failed");
    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    EXPECT_TRUE(std::filesystem::is_directory(host().directory()));
}

TEST_F(ResultRestore, OfALinkToNowhereFindsNoFile) {
    std::filesystem::create_symlink(host().directory() / "nowhere", file());
    expectRefusal("analysisCachePath not exists");
    EXPECT_TRUE(fileIsThere());
}

/// Takes from this thread what root may do to files, for as long as it lives.
class NotAsRoot {
public:
    NotAsRoot() : before_(setfsuid(nobody)) {}
    ~NotAsRoot() { setfsuid(static_cast<uid_t>(before_)); }
    NotAsRoot(const NotAsRoot&) = delete;
    NotAsRoot& operator=(const NotAsRoot&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    const int before_;
};

TEST_F(ResultRestore, OfAForbiddenFileDeletesIt) {
    using std::filesystem::perms;
    put(ResultText{}.text());
    std::filesystem::permissions(file(), perms::none);
    std::filesystem::permissions(file().parent_path(), perms::all);
    std::filesystem::permissions(host().directory(), perms::all);
    {
        const NotAsRoot here;
        if (std::ifstream(file())) GTEST_SKIP() << "every file opens";
        expectRefusal("analysisCachePath open failed");
    }
    EXPECT_FALSE(fileIsThere());
}

TEST_F(OddResultFile, IsNotWrittenIntoADeviceOrAPipe) {
    std::filesystem::create_symlink("/dev/null", file());
    ASSERT_FALSE(save({}));
    std::filesystem::remove(file());
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    EXPECT_FALSE(save({}));
    EXPECT_EQ(logTexts().back(), "analysisCachePath open failed");
    EXPECT_TRUE(std::filesystem::is_fifo(file()));
}

}  // namespace
}  // namespace fake_host
