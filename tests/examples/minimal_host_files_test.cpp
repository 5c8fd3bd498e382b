#include <gtest/gtest.h>

#include "host/validation.h"
#include "tests/examples/MinimalHost.h"
#include "tests/examples/PlainFiles.h"

namespace minimal_host_tests {
namespace {

int plain(int, int, int) {
    return 90;
}

TEST(MinimalMaterial, VideoTellsTypeDurationAndName) {
    const PlainFiles files;
    const auto file = files.makeVideo("a.y4m", 10, plain);
    const Material material = import(file);
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(mediaOf(material).getMediaType(), KOR::mediaTypeVideo);
    EXPECT_EQ(mediaOf(material).getDuration(), 4000000);
    EXPECT_EQ(mediaOf(material).getFileName(), file.string());
    EXPECT_EQ(material->queryInterface("IDmBaseObj"), material.get());
    EXPECT_EQ(material->queryInterface("IDmBaseMedi"), nullptr);
    EXPECT_EQ(material->queryInterface(nullptr), nullptr);
}

TEST(MinimalMaterial, PhotoHasOneTickAndNoLength) {
    const PlainFiles files;
    const Material material = import(files.makePhoto("a.pgm", plain));
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(mediaOf(material).getMediaType(), KOR::mediaTypePhoto);
    EXPECT_EQ(mediaOf(material).getDuration(), 1);
    KOR::KorValue value{};
    value.asInt64 = 5;
    EXPECT_EQ(sourceOf(material).getMediaInfo("size", &value), KOR::statusFailed);
    EXPECT_EQ(sourceOf(material).getMediaInfo(nullptr, &value), KOR::statusFailed);
    EXPECT_EQ(sourceOf(material).getMediaInfo("media_length", nullptr), KOR::statusFailed);
    EXPECT_EQ(value.asInt64, 5);
    EXPECT_EQ(sourceOf(material).getMediaInfo("media_length", &value), KOR::statusOk);
    EXPECT_EQ(value.asInt64, 0);
}

TEST(MinimalMaterial, CacheIsBelowTheDirectoryForEachContent) {
    const PlainFiles files;
    const auto file = files.makeVideo("a.y4m", 10, plain);
    const auto cacheOf = [&](const std::filesystem::path& root) {
        const Material material = import(file, root);
        return std::string(sourceOf(material).getMediaInfoText("media_cache"));
    };
    EXPECT_EQ(cacheOf(""), "");
    const std::string first = cacheOf("/cache");
    EXPECT_EQ(first.find("/cache/"), 0U);
    EXPECT_EQ(cacheOf("/cache"), first);
    files.makeVideo("a.y4m", 11, plain);
    EXPECT_NE(cacheOf("/cache"), first);
}

TEST(MinimalMaterial, ReadsOddRates) {
    const PlainFiles files;
    const Material material =
        import(files.makeVideo("a.y4m", 4, plain, "F30000:1001 Ip C420jpeg Xcomment"));
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(mediaOf(material).getDuration(), 1334667);
    TaskRun run({9}, files.directory() / "a.y4m");
    lookWithin(run.task, {{333667, 333668}, {667334, 667335}, {1001000, 1001001}});
    run.finish();
    EXPECT_EQ(resultsOf<std::int64_t>(run.task, 9),
              (std::vector<std::int64_t>{333667, 667334, 1001000}));
}

TEST(MinimalMaterial, RefusesWhatItCannotUse) {
    const PlainFiles files;
    const std::string picture(64 * 48 * 3 / 2, 'x');
    const auto refuses = [&](const std::string& bytes) {
        return import(files.write("a", bytes)) == nullptr;
    };
    const auto header = [](const std::string& text) { return "YUV4MPEG2 " + text + "\nFRAME\n"; };
    EXPECT_FALSE(refuses(header("W64 H48 F25:1") + picture));
    EXPECT_TRUE(refuses(header("W64 H48 F25:1") + picture.substr(1))) << "cut short";
    EXPECT_TRUE(refuses("YUV4MPEG2 W64 H48 F25:1\n")) << "no picture";
    EXPECT_TRUE(refuses("YUV4MPEG2 W64 H48 F25:1")) << "no end of line";
    EXPECT_TRUE(refuses("YUV4MPEG2 " + std::string(5000, 'X')));
    EXPECT_TRUE(refuses(header("W64 H48 F25:1 C422") + picture + picture));
    EXPECT_TRUE(refuses(header("W64 H48 F25:1 C420p10") + picture + picture));
    EXPECT_TRUE(refuses(header("W64 H48") + picture)) << "no rate";
    EXPECT_TRUE(refuses(header("W64 H48 F0:0") + picture));
    EXPECT_TRUE(refuses(header("W64 H48 F-25:1") + picture));
    EXPECT_TRUE(refuses(header("W64 H48 F25") + picture));
    EXPECT_TRUE(refuses(header("W0 H48 F25:1") + picture));
    EXPECT_TRUE(refuses(header("W-64 H48 F25:1") + picture));
    EXPECT_TRUE(refuses(header("W999999999999 H999999999999 F25:1") + picture));
    EXPECT_TRUE(refuses(header("W64 H48 F25:1 Cmono") + picture)) << "no colours";
    EXPECT_FALSE(refuses("P5 64 48 255\n" + picture));
    EXPECT_TRUE(refuses("P5 64 48 255\n" + picture.substr(0, 3071)));
    EXPECT_TRUE(refuses("P5 64 48 65535\n" + picture + picture));
    EXPECT_TRUE(refuses("P5 64 48 255"));
    EXPECT_TRUE(refuses("P6 64 48 255\n" + picture + picture));
    EXPECT_TRUE(refuses("P5 99999 99999 255\n" + picture));
    EXPECT_TRUE(refuses("P5 0 48 255\n" + picture));
    EXPECT_TRUE(refuses("P5"));
    EXPECT_TRUE(refuses(""));
    EXPECT_EQ(import(files.directory()), nullptr);
    EXPECT_EQ(import(files.directory() / "missing"), nullptr);
    EXPECT_EQ(HOST(createValidationMaterial)(nullptr, ""), nullptr);
    EXPECT_EQ(HOST(createValidationMaterial)("a", nullptr), nullptr);
}

TEST(MinimalMaterial, AnyByteOfAHeaderMayBeWrong) {
    const PlainFiles files;
    const std::string video = contentOf(files.makeVideo("a.y4m", 4, plain));
    const std::string photo = contentOf(files.makePhoto("a.pgm", plain));
    int usable = 0;
    for (const std::string& good : {video, photo}) {
        for (std::size_t place = 0; place < good.find('\n', 12) + 8; ++place) {
            for (const char byte : {'\0', ' ', '\n', '0', '9', '-', ':', '\xff'}) {
                std::string bytes = good;
                bytes[place] = byte;
                const auto file = files.write("b", bytes);
                if (import(file) == nullptr) continue;
                ++usable;
                TaskRun run({1, 8, 9}, file);
                run.finish();
                EXPECT_EQ(run.recorder.events().back().event, 2U);
            }
        }
    }
    EXPECT_GT(usable, 50) << "most of what is wrong is refused, but not all";
}

}  // namespace
}  // namespace minimal_host_tests
