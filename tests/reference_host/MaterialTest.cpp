#include <atomic>
#include <stop_token>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

TEST(Material, KnowsItsInterfacesByName) {
    const FootageFiles files;
    const auto material = import(files.makeVideo("a.mp4", 3));
    EXPECT_EQ(material->queryInterface("IDmBaseObj"), material.get());
    EXPECT_NE(material->queryInterface("IDmBaseMedia"), nullptr);
    EXPECT_NE(material->queryInterface("IDmSourceMedia"), nullptr);
    EXPECT_EQ(material->queryInterface("IDmBaseMedi"), nullptr);
    EXPECT_EQ(material->queryInterface(nullptr), nullptr);
    EXPECT_EQ(material->refCount(), 1U);
}

TEST(Material, VideoTellsTypeDurationAndName) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 10);
    const auto material = import(file);
    EXPECT_EQ(mediaOf(material).getMediaType(), KOR::mediaTypeVideo);
    EXPECT_EQ(mediaOf(material).getDuration(), 4000000);
    EXPECT_EQ(mediaOf(material).getFileName(), file.string());
}

TEST(Material, PhotoHasNoLengthOfItsOwn) {
    const FootageFiles files;
    const auto material = import(files.makeVideo("a.png", 1, ""));
    EXPECT_EQ(mediaOf(material).getMediaType(), KOR::mediaTypePhoto);
    EXPECT_EQ(mediaOf(material).getDuration(), 1);
    KOR::KorValue value{};
    value.asInt64 = 5;
    EXPECT_EQ(sourceOf(material).getMediaInfo(KOR::mediaInfoKey::media_length, &value),
              KOR::statusOk);
    EXPECT_EQ(value.asInt64, 0);
}

TEST(Material, UnknownInformationLeavesTheValueAlone) {
    const FootageFiles files;
    const auto material = import(files.makeVideo("a.png", 1, ""));
    KOR::KorValue value{};
    value.asInt64 = 5;
    EXPECT_EQ(sourceOf(material).getMediaInfo("media_size", &value), KOR::statusFailed);
    EXPECT_EQ(sourceOf(material).getMediaInfo(nullptr, &value), KOR::statusFailed);
    EXPECT_EQ(sourceOf(material).getMediaInfo("media_length", nullptr), KOR::statusFailed);
    EXPECT_EQ(value.asInt64, 5);
    EXPECT_STREQ(sourceOf(material).getMediaInfoText("media_size"), "");
    EXPECT_STREQ(sourceOf(material).getMediaInfoText(nullptr), "");
}

std::string cacheOf(const std::filesystem::path& file, const std::filesystem::path& root) {
    const auto material = import(file, root);
    return sourceOf(material).getMediaInfoText(KOR::mediaInfoKey::media_cache);
}

TEST(Material, CacheIsTheDirectoryOfItsContentBelowTheRoot) {
    const FootageFiles files;
    const auto file = files.makeVideo("a b.png", 1, "");
    const std::filesystem::path root = files.path("cache/root");
    const auto imported = reference_host::importMaterial(file, root);
    const auto material = hold(imported.object);
    EXPECT_EQ(sourceOf(material).getMediaInfoText(KOR::mediaInfoKey::media_cache),
              root / imported.contentKey);
    EXPECT_EQ(cacheOf(file, ""), "");
}

TEST(Material, CacheTooLongForAValueIsStillAText) {
    const FootageFiles files;
    const std::string root = files.path(std::string(2000, 'x'));
    const auto material = import(files.makeVideo("a.png", 1, ""), root);
    EXPECT_TRUE(std::string(sourceOf(material).getMediaInfoText("media_cache")).starts_with(root));
    KOR::KorValue value{};
    EXPECT_EQ(sourceOf(material).getMediaInfo("media_cache", &value), KOR::statusFailed);
}

TEST(Material, ReportOfAnUntouchedOneIsEmpty) {
    const FootageFiles files;
    const auto material = import(files.makeVideo("a.mp4", 3));
    const reference_host::MaterialReport report = reference_host::reportOf(*material);
    EXPECT_FALSE(report.analysed);
    EXPECT_EQ(report.failure, "");
    EXPECT_TRUE(report.warnings.empty());
}

// Stopping an import.

TEST(Material, StoppedImportSaysThatItWasInterrupted) {
    const FootageFiles files;
    std::stop_source stop;
    stop.request_stop();
    for (const char* name : {"a.mp4", "a.h264", "a.png"}) {
        const auto imported =
            reference_host::importMaterial(files.makeVideo(name, 1, ""), {}, stop.get_token());
        EXPECT_EQ(imported.object, nullptr) << name;
        EXPECT_EQ(imported.error, "interrupted") << name;
    }
}

/// Imports `file` again and again on a thread that is soon asked to stop, until that is heard.
/// Expects the whole duration until then: what a stop cut short would be shorter.
void importUntilInterrupted(const std::filesystem::path& file, std::int64_t durationTicks) {
    std::atomic<bool> underWay{false};
    std::jthread importer([&](const std::stop_token& stop) {
        underWay = true;
        underWay.notify_one();
        for (;;) {
            const auto imported = reference_host::importMaterial(file, {}, stop);
            if (imported.object == nullptr) {
                EXPECT_EQ(imported.error, "interrupted");
                return;
            }
            EXPECT_EQ(mediaOf(hold(imported.object)).getDuration(), durationTicks);
        }
    });
    underWay.wait(false);
    importer.request_stop();
}

TEST(Material, InterruptedImportGivesNoHalfMaterial) {
    const FootageFiles files;
    const auto indexed = files.makeVideo("a.mkv", 250);
    const auto raw = files.makeVideo("a.h264", 250);
    for (int round = 0; round < 20; ++round) {
        importUntilInterrupted(indexed, 10 * KOR::ticksPerSecond);
        importUntilInterrupted(raw, 10 * KOR::ticksPerSecond);
    }
}

// What is a video and what a photo.

std::uint32_t typeOf(const std::filesystem::path& file) {
    return mediaOf(import(file)).getMediaType();
}

TEST(Material, OnePictureIsAPhotoInAnyFormat) {
    const FootageFiles files;
    EXPECT_EQ(typeOf(files.makeVideo("a.jpg", 1, "")), KOR::mediaTypePhoto);
    EXPECT_EQ(typeOf(files.makeVideo("a.gif", 1, "")), KOR::mediaTypePhoto);
    EXPECT_EQ(typeOf(files.makeVideo("a.webp", 1, "")), KOR::mediaTypePhoto);
    EXPECT_EQ(typeOf(files.makeVideo("a.bmp", 1, "")), KOR::mediaTypePhoto);
    EXPECT_EQ(typeOf(files.makeVideo("a.tiff", 1, "")), KOR::mediaTypePhoto);
    EXPECT_EQ(typeOf(files.makeVideo("a.mp4", 1)), KOR::mediaTypePhoto);
    EXPECT_EQ(typeOf(files.makeVideo("a.mkv", 1)), KOR::mediaTypePhoto);
}

TEST(Material, TwoPicturesAreAVideoInAnyFormat) {
    const FootageFiles files;
    EXPECT_EQ(typeOf(files.makeVideo("a.gif", 2, "")), KOR::mediaTypeVideo);
    EXPECT_EQ(typeOf(files.makeVideo("a.apng", 2, "")), KOR::mediaTypeVideo);
    EXPECT_EQ(typeOf(files.makeVideo("a.mp4", 2)), KOR::mediaTypeVideo);
}

}  // namespace
}  // namespace reference_host_tests
