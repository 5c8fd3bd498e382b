#include <gtest/gtest.h>
#include <unistd.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/CachedFootage.h"

namespace autotrim {
namespace {

using std::filesystem::path;
using std::filesystem::perms;

/// Makes the process, and those that it starts, a user's who may not do everything.
class OrdinaryRights {
protected:
    OrdinaryRights() : wasRoot_(geteuid() == 0) {
        constexpr uid_t nobody = 65534;
        if (wasRoot_) become(nobody);
    }
    ~OrdinaryRights() {
        if (wasRoot_) become(0);
    }

private:
    static void become(uid_t user) { EXPECT_EQ(setresuid(user, user, 0), 0); }

    bool wasRoot_;
};

/// The rights are taken before the directories are made, so that they are the user's own.
class OrdinaryUser : private OrdinaryRights, public CachedFootage {
protected:
    void SetUp() override {
        if (eaccess(AUTOTRIM_PROGRAM, X_OK) != 0) GTEST_SKIP() << "not for everyone's eyes";
    }

    std::vector<std::string> onCache(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--cache", cache().string()});
        return arguments;
    }
};

TEST_F(OrdinaryUser, GetsAnUnreadableResultReplaced) {
    const Json first = analyse({"two.mp4"});
    const path result = onlyResultFile();
    std::filesystem::permissions(result, perms::none);
    EXPECT_EQ(analyse({"two.mp4"}), first);
    EXPECT_EQ(onlyResultFile(), result);
    EXPECT_EQ(analyse({"two.mp4"}), restored(first));
}

TEST_F(OrdinaryUser, IsWarnedOfAResultThatCannotBeReplaced) {
    const Json first = analyse({"two.mp4"});
    const path result = onlyResultFile();
    std::filesystem::permissions(result, perms::owner_read);
    std::filesystem::permissions(result.parent_path(), perms::owner_read | perms::owner_exec);
    EXPECT_EQ(analyse({"two.mp4"}), restored(first));
    const Ended ended = run(onCache({"--threshold", "2.5", "two.mp4"}));
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, warningOfCache());
    std::filesystem::permissions(result.parent_path(), perms::owner_all);
}

TEST_F(OrdinaryUser, IsToldWhatCannotBeDeleted) {
    analyse({"two.mp4", "scenes.mp4"});
    const path result = resultFilesIn(cache())[0];
    std::filesystem::permissions(result.parent_path(), perms::owner_read | perms::owner_exec);
    const Ended ended = run(onCache({"cache", "clear"}));
    EXPECT_EQ(ended.exitCode, exitSomeFailed);
    EXPECT_EQ(ended.output.rfind("deleted what was kept of 1 file: ", 0), 0U) << ended.output;
    ASSERT_EQ(ended.errorLines().size(), 1U) << ended.errors;
    EXPECT_EQ(ended.errors.rfind("autotrim: ", 0), 0U);
    EXPECT_NE(ended.errors.find(result.string()), std::string::npos) << ended.errors;
    EXPECT_EQ(onlyResultFile(), result);
    std::filesystem::permissions(result.parent_path(), perms::owner_all);
}

TEST_F(OrdinaryUser, IsToldOfACacheThatCannotBeRead) {
    std::filesystem::permissions(cache(), perms::none);
    for (const char* action : {"list", "clear"}) {
        const Ended ended = run(onCache({"cache", action}));
        EXPECT_EQ(ended.exitCode, exitSomeFailed);
        EXPECT_EQ(ended.output, "");
        EXPECT_EQ(ended.errorLines().size(), 1U) << ended.errors;
        EXPECT_NE(ended.errors.find(cache().string()), std::string::npos) << ended.errors;
    }
    std::filesystem::permissions(cache(), perms::owner_all);
}

}  // namespace
}  // namespace autotrim
