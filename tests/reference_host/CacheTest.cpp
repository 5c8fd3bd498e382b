#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "reference_host/ReferenceHost.h"
#include "reference_host/cache/contentKey.h"
#include "reference_host/cache/factsFile.h"
#include "reference_host/media/RegularFile.h"
#include "reference_host/media/inspect.h"
#include "reference_host/media/libraryVersions.h"
#include "reference_host/tasks/FaceDetectors.h"
#include "tests/reference_host/AnalysisRun.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/blindModel.h"

namespace reference_host_tests {
namespace {

namespace fs = std::filesystem;
namespace cache = reference_host::cache;
namespace media = reference_host::media;

/// Files, and a cache for what is found out about them.
class Cache : public testing::Test {
protected:
    fs::path root() const { return files.path("cache"); }

    fs::path directoryOf(const fs::path& file) const {
        return root() /
               cache::contentKey(media::RegularFile(file),
                                 reference_host::FaceDetectors::instance().modelFingerprint());
    }

    fs::path factsOf(const fs::path& file) const { return directoryOf(file) / "facts.json"; }

    /// What a look at the file gives, as it should be kept.
    static cache::KeptFacts lookAt(const fs::path& file) {
        return {media::libraryVersions(), file.string(), media::inspect(file), {}, {}};
    }

    /// How many things of any kind stand in the cache.
    std::ptrdiff_t entries() const {
        return std::distance(fs::recursive_directory_iterator(root()), {});
    }

    FootageFiles files;
};

TEST_F(Cache, KeepsWhatALookFinds) {
    const std::vector<fs::path> imported = {
        files.makeVideo("a.mp4", 30, "-c:v libx264 -g 5"), files.makeVideo("a.mkv", 30),
        files.makeVideo("a.h264", 10), files.makeVideo("a.png", 1, ""),
        files.makeVideo("a.gif", 5, "")};
    for (const fs::path& file : imported) {
        import(file, root());
        EXPECT_EQ(cache::keptFacts(directoryOf(file)), lookAt(file)) << file;
    }
    EXPECT_FALSE(cache::keptFacts(directoryOf(imported[0]))->footage.keyTimestamps.empty());
}

TEST_F(Cache, KeepsWarnings) {
    const fs::path file = files.makeVideo("a.mkv", 100, "-c:v libx264 -bf 0");
    FootageFiles::truncate(file, 0.6);
    const auto warnings = reference_host::reportOf(*import(file, root())).warnings;
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(reference_host::reportOf(*import(file, root())).warnings, warnings);
}

TEST_F(Cache, SecondImportGivesTheSameMaterial) {
    const fs::path file = files.makeVideo("a.mp4", 30);
    const auto first = import(file, root());
    const auto second = import(file, root());
    EXPECT_EQ(mediaOf(second).getMediaType(), mediaOf(first).getMediaType());
    EXPECT_EQ(mediaOf(second).getDuration(), mediaOf(first).getDuration());
    EXPECT_EQ(mediaOf(second).getFileName(), file.string());
    EXPECT_STREQ(sourceOf(second).getMediaInfoText("media_cache"), directoryOf(file).c_str());
}

TEST_F(Cache, FactsMayBeReadByThoseWhoMayReadOtherNewFiles) {
    const fs::path file = files.makeVideo("a.mp4", 2);
    import(file, root());
    const auto mayDo = [](const fs::path& place) { return fs::status(place).permissions(); };
    EXPECT_EQ(mayDo(factsOf(file)), mayDo(files.write("any.txt", "any")));
}

TEST_F(Cache, NothingOfTheFileIsReadButSamples) {
    const fs::path file = files.write("a.mp4", "no media file at all");
    cache::KeptFacts facts{media::libraryVersions(), file.string(), {}, {}, {}};
    facts.footage.isVideo = true;
    facts.footage.durationTicks = 777;
    cache::keepFacts(directoryOf(file), facts);
    EXPECT_EQ(mediaOf(import(file, root())).getDuration(), 777);
    EXPECT_NE(refusalOf(file), "") << "without the cache";
}

TEST_F(Cache, NothingBetweenSamplesIsRead) {
    const fs::path file = files.makeVideo("a.avi", 400, "-c:v rawvideo -pix_fmt bgr24");
    const std::int64_t duration = mediaOf(import(file, root())).getDuration();
    const std::int64_t size = static_cast<std::int64_t>(fs::file_size(file));
    const std::int64_t block = 64 << 10;
    const std::int64_t gap = (size - block) / 15 - block;
    ASSERT_GT(gap, block);
    const fs::file_time_type modified = fs::last_write_time(file);
    for (int i = 0; i < 15; ++i)
        FootageFiles::patch(file, i * ((size - block) / 15) + block,
                            std::string(static_cast<std::size_t>(gap), '\0'));
    fs::last_write_time(file, modified);
    EXPECT_EQ(mediaOf(import(file, root())).getDuration(), duration);
    EXPECT_NE(media::inspect(file).keyTimestamps,
              cache::keptFacts(directoryOf(file))->footage.keyTimestamps)
        << "it is another one now";
}

TEST_F(Cache, FactsOfOtherLibrariesAreFoundOutAgain) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    cache::KeptFacts facts{"libavformat 1.2.3", file.string(), {}, {}, {}};
    facts.footage.isVideo = true;
    facts.footage.durationTicks = 777;
    cache::keepFacts(directoryOf(file), facts);
    EXPECT_EQ(mediaOf(import(file, root())).getDuration(), 4000000);
    EXPECT_EQ(cache::keptFacts(directoryOf(file)), lookAt(file)) << "and kept anew";
}

TEST_F(Cache, ChangedFileIsAnotherMaterial) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    import(file, root());
    files.makeVideo("a.mp4", 20);
    EXPECT_EQ(mediaOf(import(file, root())).getDuration(), 8000000);
}

TEST_F(Cache, NothingIsTouchedWhereAllIsKnown) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    import(file, root());
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat(factsOf(file).c_str(), &before), 0);
    import(file, root());
    ASSERT_EQ(::stat(factsOf(file).c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
}

TEST_F(Cache, MovedFileIsKnownByItsNewPath) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    import(file, root());
    const fs::path moved = files.path("b.mp4");
    fs::rename(file, moved);
    import(moved, root());
    EXPECT_EQ(cache::keptFacts(directoryOf(moved)), lookAt(moved));
    EXPECT_EQ(entries(), 2) << "one directory, one file";
}

TEST_F(Cache, PathsAreKeptFromTheRootOn) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    const fs::path before = fs::current_path();
    fs::current_path(file.parent_path());
    import("./a.mp4", root());
    const auto facts = cache::keptFacts(directoryOf(file));
    fs::current_path(before);
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->file, file.string());
}

TEST_F(Cache, KeyIsTheSameWithAndWithoutARoot) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    const auto with = reference_host::importMaterial(file, root());
    const auto without = reference_host::importMaterial(file, {});
    hold(with.object);
    hold(without.object);
    EXPECT_EQ(without.contentKey, with.contentKey);
    EXPECT_EQ(root() / with.contentKey, directoryOf(file));
}

TEST_F(Cache, RefusedFilesHaveNoKeyAndLeaveNothing) {
    const auto imported = reference_host::importMaterial(files.write("a.mp4", "text"), root());
    EXPECT_EQ(imported.object, nullptr);
    EXPECT_EQ(imported.contentKey, "");
    EXPECT_FALSE(fs::exists(root()));
}

TEST_F(Cache, NothingIsKeptWithoutARoot) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    const fs::path before = fs::current_path();
    fs::create_directory(files.path("empty"));
    fs::current_path(files.path("empty"));
    import(file, {});
    fs::current_path(before);
    EXPECT_TRUE(fs::is_empty(files.path("empty")));
}

TEST_F(Cache, RootThatCannotBeMadeIsAsGoodAsNone) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    files.write("cache", "a file");
    EXPECT_EQ(mediaOf(import(file, root())).getDuration(), 4000000);
    EXPECT_EQ(contentOf(root()), "a file");
}

// Whatever stands in the place of the facts.

using Maker = std::function<void(const fs::path& place)>;

Maker bytes(const std::string& text) {
    return [text](const fs::path& place) { std::ofstream(place, std::ios::binary) << text; };
}

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

struct Junk {
    std::string name;
    Maker put;
    bool isReplaced = true;
};

std::vector<Junk> junk() {
    return {
        {"empty", bytes("")},
        {"blank", bytes(" \n")},
        {"null", bytes("null")},
        {"array", bytes("[]")},
        {"no JSON", bytes("\xff\x01 no JSON")},
        {"brackets", bytes(repeated("[", 50'000'000))},
        {"zeros", bytes("[" + repeated("0", 8'000'000) + "]")},
        {"many numbers", bytes("{\"keyTimestamps\":[0" + repeated(",0", 3'500'000) + "]}")},
        {"pipe", [](const fs::path& place) { ASSERT_EQ(::mkfifo(place.c_str(), 0600), 0); }},
        {"link to nowhere",
         [](const fs::path& place) { fs::create_symlink("/nowhere/at/all", place); }},
        {"link to itself", [](const fs::path& place) { fs::create_symlink(place, place); }},
        {"device", [](const fs::path& place) { fs::create_symlink("/dev/zero", place); }},
        {"directory", [](const fs::path& place) { fs::create_directory(place); }, false},
    };
}

TEST_F(Cache, WhateverStandsThereIsLookedPast) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    for (const Junk& thing : junk()) {
        SCOPED_TRACE(thing.name);
        fs::remove_all(root());
        fs::create_directories(directoryOf(file));
        thing.put(factsOf(file));
        EXPECT_EQ(mediaOf(import(file, root())).getDuration(), 4000000);
        const auto kept = cache::keptFacts(directoryOf(file));
        EXPECT_EQ(kept.has_value(), thing.isReplaced);
        if (kept) {
            EXPECT_EQ(kept, lookAt(file));
        }
        EXPECT_EQ(entries(), 2) << "nothing unfinished is left";
    }
}

TEST_F(Cache, UnfinishedFactsAreLookedPast) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    import(file, root());
    const std::string text = contentOf(factsOf(file));
    for (std::size_t size = 0; size < text.size(); size += 7) {
        bytes(text.substr(0, size))(factsOf(file));
        import(file, root());
        ASSERT_EQ(contentOf(factsOf(file)), text) << size;
    }
}

TEST_F(Cache, NoMoreIsReadThanFactsTake) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    import(file, root());
    const std::string text = contentOf(factsOf(file));
    bytes(text + std::string(100, ' '))(factsOf(file));
    EXPECT_TRUE(cache::keptFacts(directoryOf(file)));
    bytes(text + std::string(9 << 20, ' '))(factsOf(file));
    EXPECT_FALSE(cache::keptFacts(directoryOf(file)));
}

// Several at once.

TEST_F(Cache, ImportersAtTheSameTimeAllEndWell) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    const fs::path copy = files.path("b.mp4");
    fs::copy_file(file, copy);
    fs::last_write_time(copy, fs::last_write_time(file));
    std::atomic<int> good = 0;
    {
        std::vector<std::jthread> threads;
        threads.reserve(8);
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&, i] {
                for (int time = 0; time < 25; ++time) {
                    const auto material = import(i % 2 == 0 ? file : copy, root());
                    if (mediaOf(material).getDuration() == 4000000) ++good;
                }
            });
        }
    }
    EXPECT_EQ(good, 8 * 25);
    EXPECT_EQ(entries(), 2) << "one directory, one file";
    EXPECT_EQ(cache::keptFacts(directoryOf(file))->footage, media::inspect(file));
}

// Faces.

TEST_F(Cache, FacesAreKnownAfterAnotherImport) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    {
        AnalysisRun run({3}, file, root());
        run.lookAt({0, 400000});
        run.finish();
    }
    const auto material = import(file, root());
    EXPECT_EQ(reference_host::facesAt(*material, 0), 0);
    EXPECT_EQ(reference_host::facesAt(*material, 400000), 0);
    EXPECT_EQ(reference_host::facesAt(*material, 800000), std::nullopt);
    EXPECT_FALSE(reference_host::reportOf(*material).analysed);
}

TEST_F(Cache, FacesStayWithAMovedFile) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    {
        AnalysisRun run({3}, file, root());
        run.lookAt({0});
        run.finish();
    }
    fs::rename(file, files.path("b.mp4"));
    EXPECT_EQ(reference_host::facesAt(*import(files.path("b.mp4"), root()), 0), 0);
    EXPECT_EQ(reference_host::facesAt(*import(files.path("b.mp4"), root()), 0), 0);
}

TEST_F(Cache, FacesStayWhenOtherLibrariesLookAgain) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    cache::KeptFacts facts = lookAt(file);
    facts.madeBy = "libavformat 1.2.3";
    facts.faceCounts = {{0, 2}};
    cache::keepFacts(directoryOf(file), facts);
    EXPECT_EQ(reference_host::facesAt(*import(file, root()), 0), 2);
    EXPECT_EQ(cache::keptFacts(directoryOf(file))->madeBy, media::libraryVersions());
    EXPECT_EQ(reference_host::facesAt(*import(file, root()), 0), 2);
}

TEST_F(Cache, FacesGoWhenOtherLibrariesSeeAPhoto) {
    const fs::path file = files.makeVideo("a.png", 1, "");
    cache::KeptFacts facts{"libavformat 1.2.3", file.string(), {}, {}, {{0, 2}}};
    facts.footage.isVideo = true;
    facts.footage.durationTicks = 777;
    cache::keepFacts(directoryOf(file), facts);
    EXPECT_EQ(reference_host::facesAt(*import(file, root()), 0), std::nullopt);
    EXPECT_EQ(cache::keptFacts(directoryOf(file)), lookAt(file));
}

TEST_F(Cache, FacesOfAnEarlierRunGoWithItsResults) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    {
        AnalysisRun run({3}, file, root());
        run.lookAt({0});
        run.finish();
    }
    AnalysisRun run({8}, file, root());
    ASSERT_EQ(reference_host::facesAt(*run.material, 0), 0);
    run.lookAt({0});
    run.finish();
    EXPECT_EQ(reference_host::facesAt(*run.material, 0), std::nullopt);
    EXPECT_EQ(reference_host::facesAt(*import(file, root()), 0), std::nullopt);
}

TEST_F(Cache, NothingIsKeptOfAFileThatIsReplacedMeanwhile) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    AnalysisRun run({1}, file, root());
    ASSERT_EQ(sourceOf(run.material).getMediaInfoText("media_cache"), directoryOf(file));
    fs::rename(file, files.path("moved.mp4"));
    files.makeVideo("a.mp4", 20);
    run.finish();
    EXPECT_STREQ(sourceOf(run.material).getMediaInfoText("media_cache"), "");
    const auto report = reference_host::reportOf(*run.material);
    EXPECT_EQ(report.failure, "");
    EXPECT_EQ(report.warnings,
              std::vector<std::string>{"the file was changed or moved while it was analysed"});
}

TEST_F(Cache, NothingIsKeptOfAFileThatIsGoneMeanwhile) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    AnalysisRun run({8}, file, root());
    run.finish();
    ASSERT_STRNE(sourceOf(run.material).getMediaInfoText("media_cache"), "");
    fs::rename(file, files.path("moved.mp4"));
    // There is nothing to look at: the task need not open the file.
    run.lookAt({});
    run.finish(2);
    EXPECT_STREQ(sourceOf(run.material).getMediaInfoText("media_cache"), "");
    EXPECT_EQ(reference_host::reportOf(*run.material).failure, "");
}

TEST_F(Cache, AnotherFaceModelIsNoChangeOfTheFile) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    AnalysisRun run({8}, file, root());
    reference_host::useFaceModel(files.write("other.onnx", blindModel(1)));
    run.finish();
    EXPECT_STRNE(sourceOf(run.material).getMediaInfoText("media_cache"), "");
    EXPECT_EQ(reference_host::reportOf(*run.material).warnings, std::vector<std::string>());
}

TEST_F(Cache, FacesStayForALaterTaskOfTheSameRun) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    AnalysisRun faces({3}, file, root());
    faces.lookAt({0});
    faces.finish();
    TaskRecorder recorder;
    const Task entropy = makeTask({8});
    entropy->addCallBack(&recorder);
    ASSERT_EQ(analysisOf(entropy).setSource(&sourceOf(faces.material), 0, 0), KOR::statusOk);
    ASSERT_EQ(entropy->start(), KOR::statusOk);
    recorder.waitFor(KOR::taskEventFinished);
    EXPECT_EQ(reference_host::facesAt(*faces.material, 0), 0);
}

TEST_F(Cache, FactsOfAFileWhoseAnalysisFailsAreForgotten) {
    const fs::path file = files.write("a.mp4", "no media file at all");
    cache::KeptFacts facts{media::libraryVersions(), file.string(), {}, {}, {}};
    facts.footage.isVideo = true;
    facts.footage.durationTicks = 777;
    cache::keepFacts(directoryOf(file), facts);
    AnalysisRun run({1}, file, root());
    ASSERT_EQ(run.task->start(), KOR::statusOk);
    run.recorder.waitFor(KOR::taskEventFinished);
    EXPECT_NE(reference_host::reportOf(*run.material).failure, "");
    EXPECT_FALSE(fs::exists(factsOf(file)));
}

/// Wherever in an import the change hits, what is kept under a key is true of its content.
TEST_F(Cache, FactsAreOfTheContentThatTheirKeyNames) {
    const std::string raw = "-c:v rawvideo -pix_fmt bgr24";
    const fs::path before = files.makeVideo("before.avi", 300, raw);
    const fs::path after = files.makeVideo("after.avi", 200, raw);
    const fs::path file = files.path("a.avi");
    for (int i = 0; i < 40; ++i) {
        fs::create_hard_link(before, file);
        fs::create_hard_link(after, files.path("next.avi"));
        std::thread replacing([&] {
            std::this_thread::sleep_for(std::chrono::microseconds(100 * i));
            fs::rename(files.path("next.avi"), file);
        });
        import(file, root());
        replacing.join();
        for (const fs::path& content : {before, after}) {
            const auto kept = cache::keptFacts(directoryOf(content));
            if (kept) {
                EXPECT_EQ(kept->footage, media::inspect(content)) << "round " << i;
            }
            fs::remove(factsOf(content));
        }
        fs::remove(file);
    }
}

TEST_F(Cache, FacesOfPhotosAreNotKept) {
    const fs::path file = files.makeVideo("a.png", 1, "");
    {
        AnalysisRun run({3}, file, root());
        run.finish();
        ASSERT_EQ(reference_host::facesAt(*run.material, 0), 0);
    }
    EXPECT_EQ(cache::keptFacts(directoryOf(file)), lookAt(file));
    EXPECT_EQ(reference_host::facesAt(*import(file, root()), 0), std::nullopt);
}

TEST_F(Cache, FacesWhoseFactsAreLostAreNone) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    {
        AnalysisRun run({3}, file, root());
        run.lookAt({0});
        run.finish();
    }
    fs::remove(factsOf(file));
    EXPECT_EQ(reference_host::facesAt(*import(file, root()), 0), std::nullopt);
}

TEST_F(Cache, EachFaceModelHasItsOwn) {
    const fs::path file = files.makeVideo("a.mp4", 10);
    const auto cacheOf = [&] {
        return std::string(sourceOf(import(file, root())).getMediaInfoText("media_cache"));
    };
    const std::string before = cacheOf();
    reference_host::useFaceModel(files.write("model.onnx", blindModel()));
    EXPECT_NE(cacheOf(), before);
    EXPECT_EQ(cacheOf(), directoryOf(file));
}

}  // namespace
}  // namespace reference_host_tests
