#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "reference_host/cache/contentKey.h"
#include "reference_host/media/RegularFile.h"
#include "reference_host/tasks/FaceDetectors.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/blindModel.h"

namespace reference_host_tests {
namespace {

namespace fs = std::filesystem;

std::string keyOf(const fs::path& file, const std::string& faceModel = "") {
    return reference_host::cache::contentKey(reference_host::media::RegularFile(file), faceModel);
}

std::string fingerprintOf(const fs::path& file) {
    return reference_host::cache::fingerprint(reference_host::media::RegularFile(file));
}

/// Does something to a file and lets it look as if it had not been modified.
template <typename Change>
void unseen(const fs::path& file, Change change) {
    const fs::file_time_type modified = fs::last_write_time(file);
    change();
    fs::last_write_time(file, modified);
}

/// A file of as many bytes, no two blocks of which are equal.
fs::path writeBytes(const FootageFiles& files, const std::string& name, std::size_t size) {
    std::string bytes;
    bytes.reserve(size + 8);
    for (std::size_t i = 0; bytes.size() < size; ++i)
        bytes += std::to_string(i) + " ";
    bytes.resize(size);
    return files.write(name, bytes);
}

TEST(ContentKey, IsThirtyTwoHexDigits) {
    const FootageFiles files;
    const std::string key = keyOf(files.write("a", "content"));
    EXPECT_EQ(key.size(), 32U);
    EXPECT_EQ(key.find_first_not_of("0123456789abcdef"), std::string::npos) << key;
    EXPECT_TRUE(reference_host::cache::isContentKey(key));
}

TEST(ContentKey, OtherNamesAreNoKeys) {
    const std::string key = "0123456789abcdef0123456789abcdef";
    ASSERT_TRUE(reference_host::cache::isContentKey(key));
    for (const std::string& name : {key.substr(1), key + "0", "A" + key.substr(1),
                                    "g" + key.substr(1), "/" + key.substr(1), std::string()})
        EXPECT_FALSE(reference_host::cache::isContentKey(name)) << name;
}

TEST(ContentKey, StaysWhereverTheFileGoes) {
    const FootageFiles files;
    const fs::path file = files.write("a.mp4", "content");
    const std::string key = keyOf(file);
    fs::rename(file, files.path("b.mkv"));
    EXPECT_EQ(keyOf(files.path("b.mkv")), key) << "renamed";
    fs::create_directory(files.path("other"));
    const fs::path moved = files.path("other/b.mkv");
    fs::rename(files.path("b.mkv"), moved);
    EXPECT_EQ(keyOf(moved), key) << "moved";
    fs::copy_file(moved, files.path("copy"));
    fs::last_write_time(files.path("copy"), fs::last_write_time(moved));
    EXPECT_EQ(keyOf(files.path("copy")), key) << "copied with its time";
    fs::create_hard_link(moved, files.path("hard"));
    EXPECT_EQ(keyOf(files.path("hard")), key);
    fs::create_symlink(moved, files.path("soft"));
    EXPECT_EQ(keyOf(files.path("soft")), key);
}

TEST(ContentKey, ChangesWithTheTimeOfModification) {
    const FootageFiles files;
    const fs::path file = files.write("a", "content");
    const std::string key = keyOf(file);
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::nanoseconds(1));
    EXPECT_NE(keyOf(file), key);
}

TEST(ContentKey, ChangesWithTheSize) {
    const FootageFiles files;
    // All samples of it are alike.
    const std::size_t size = 3 << 20;
    const fs::path file = files.write("a", std::string(size, '\0'));
    const std::string key = keyOf(file);
    for (const std::size_t other : {size + 1, size - 1, std::size_t{3}}) {
        unseen(file, [&] { fs::resize_file(file, other); });
        EXPECT_NE(keyOf(file), key) << other;
    }
}

TEST(ContentKey, ChangesWithAnyByteOfASmallFile) {
    const FootageFiles files;
    const std::size_t size = 1 << 20;
    const fs::path file = writeBytes(files, "a", size);
    const std::string key = keyOf(file);
    for (const std::size_t offset : {std::size_t{0}, size / 2, size / 3, size - 1}) {
        unseen(file, [&] { FootageFiles::patch(file, static_cast<std::int64_t>(offset), "x"); });
        const std::string changed = keyOf(file);
        EXPECT_NE(changed, key) << offset;
        unseen(file, [&] { writeBytes(files, "a", size); });
        ASSERT_EQ(keyOf(file), key) << "as it was";
    }
}

TEST(ContentKey, ChangesWithTheSamplesOfALargeFile) {
    const FootageFiles files;
    const std::size_t size = (3 << 20) + 5;
    const std::size_t block = 64 << 10;
    const std::size_t distance = (size - block) / 15;
    const fs::path file = writeBytes(files, "a", size);
    const std::string key = keyOf(file);
    for (std::size_t i = 0; i < 16; ++i) {
        const std::size_t begin = i < 15 ? i * distance : size - block;
        for (const std::size_t offset : {begin, begin + block - 1}) {
            unseen(file,
                   [&] { FootageFiles::patch(file, static_cast<std::int64_t>(offset), "x"); });
            EXPECT_NE(keyOf(file), key) << offset;
            unseen(file, [&] { writeBytes(files, "a", size); });
        }
    }
    // The price of not reading it all.
    unseen(file, [&] { FootageFiles::patch(file, static_cast<std::int64_t>(block), "x"); });
    EXPECT_EQ(keyOf(file), key);
}

TEST(ContentKey, ChangesWithTheFaceModel) {
    const FootageFiles files;
    const fs::path file = files.write("a", "content");
    EXPECT_NE(keyOf(file, "one"), keyOf(file));
    EXPECT_NE(keyOf(file, "one"), keyOf(file, "two"));
}

TEST(ContentKey, FileThatBecomesShorterHasOne) {
    const FootageFiles files;
    const fs::path file = writeBytes(files, "a", 3 << 20);
    const reference_host::media::RegularFile open(file);
    fs::resize_file(file, 10);
    EXPECT_TRUE(reference_host::cache::isContentKey(reference_host::cache::contentKey(open, "")));
}

TEST(ContentKey, TimesFarAwayAreTimes) {
    const FootageFiles files;
    const fs::path file = files.write("a", "content");
    const std::string key = keyOf(file);
    const std::string command = "touch -d '1900-01-01' '" + file.string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_NE(keyOf(file), key);
}

TEST(Fingerprint, NamesAllBytesAndNothingElse) {
    const FootageFiles files;
    const std::size_t size = (3 << 20) + 5;
    const fs::path file = writeBytes(files, "a", size);
    const std::string before = fingerprintOf(file);
    EXPECT_TRUE(reference_host::cache::isContentKey(before));
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::hours(1));
    EXPECT_EQ(fingerprintOf(file), before);
    FootageFiles::patch(file, 64 << 10, "x");
    EXPECT_NE(fingerprintOf(file), before);
}

TEST(Fingerprint, TellsFaceModelsApart) {
    const FootageFiles files;
    reference_host::FaceDetectors detectors;
    EXPECT_EQ(detectors.modelFingerprint(), "") << "built in";
    const fs::path model = files.write("model.onnx", blindModel(0));
    detectors.useModel(model);
    const std::string first = detectors.modelFingerprint();
    EXPECT_EQ(first, fingerprintOf(model));
    detectors.useModel(files.write("model.onnx", blindModel(1)));
    EXPECT_NE(detectors.modelFingerprint(), first);
    const std::string second = detectors.modelFingerprint();
    EXPECT_THROW(detectors.useModel(files.write("model.onnx", "none")), std::runtime_error);
    EXPECT_EQ(detectors.modelFingerprint(), second) << "a refused one changes nothing";
}

}  // namespace
}  // namespace reference_host_tests
