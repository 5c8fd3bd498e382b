#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <windows.h>

#include "tests/component/RestoreTest.h"

namespace fake_host {
namespace {

/// What is different about files on this system: they can be opened so that nobody else can, their
/// names are no bytes, and a text may end before the file.
using ResultRestore = RestoreTest;
using OddResultFile = RestoreTest;

struct Close {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

/// Opens a file so that nobody else can, for as long as the handle lives.
std::unique_ptr<void, Close> openedAlone(const std::filesystem::path& file) {
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    return std::unique_ptr<void, Close>(handle);
}

TEST_F(ResultRestore, OfAFileThatAnotherHasIsRefused) {
    put(ResultText{}.text());
    {
        const auto handle = openedAlone(file());
        expectRefusal("analysisCachePath open failed");
    }
    EXPECT_EQ(contentOf(file()), ResultText{}.text());
}

TEST_F(ResultRestore, OfATextEndsWhereTextFilesEnd) {
    EXPECT_EQ(restored(ResultText{}.text() + "\x1a and more").size(), 1U);
}

TEST_F(OddResultFile, ThatAnotherHasIsNotWritten) {
    put("untouched");
    {
        const auto handle = openedAlone(file());
        EXPECT_FALSE(save({}));
    }
    EXPECT_EQ(logTexts().back(), "analysisCachePath open failed");
    EXPECT_EQ(contentOf(file()), "untouched");
}

const std::string noUtf8 = "\xff";

TEST_F(OddResultFile, WithANameThatIsNoUtf8IsNotWritten) {
    material.spec.mediaCache += "/" + noUtf8;
    EXPECT_FALSE(save({}));
    EXPECT_EQ(logTexts().back(), "analysisCachePath open failed");
    EXPECT_TRUE(std::filesystem::is_empty(file().parent_path()));
}

TEST_F(ResultRestore, WithANameThatIsNoUtf8FindsNoFile) {
    material.spec.mediaCache += "/" + noUtf8;
    EXPECT_FALSE(restore());
    EXPECT_EQ(logTexts().back(), "analysisCachePath not exists");
}

}  // namespace
}  // namespace fake_host
