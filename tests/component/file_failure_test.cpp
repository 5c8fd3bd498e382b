#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/component/RunTest.h"
#include "tests/sanitizers.h"

namespace fake_host {
namespace {

namespace fs = std::filesystem;

/// Sets a limit of this process, and the former one at the end.
class Limit {
public:
    Limit(int resource, rlim_t value) : resource_(resource) {
        getrlimit(resource_, &before_);
        rlimit now = before_;
        now.rlim_cur = value;
        setrlimit(resource_, &now);
    }
    ~Limit() { setrlimit(resource_, &before_); }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

private:
    int resource_;
    rlimit before_{};
};

/// Files cannot grow beyond so many bytes.
class FullDevice {
public:
    explicit FullDevice(rlim_t bytes) : ignored_(std::signal(SIGXFSZ, SIG_IGN)) {
        limit_.emplace(RLIMIT_FSIZE, bytes);
    }
    ~FullDevice() {
        limit_.reset();
        std::signal(SIGXFSZ, ignored_);
    }
    FullDevice(const FullDevice&) = delete;
    FullDevice& operator=(const FullDevice&) = delete;

private:
    void (*ignored_)(int);
    std::optional<Limit> limit_;
};

/// The sanitizer of undefined behaviour opens pipes itself to look at an object's type, and takes
/// their failure for a broken object.
constexpr bool descriptorsMayRunOut = !hasAddressSanitizer;

rlim_t firstFreeDescriptor() {
    const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(next);
    return static_cast<rlim_t>(next);
}

/// Three videos, each with a cache of its own.
class FilesOfVideos : public RunTest {
protected:
    FilesOfVideos() {
        for (int i = 0; i < videos; ++i)
            insert(clip().cacheIn(cache(i)));
        useKinds({4, 3});
    }

    static constexpr int videos = 3;
    static constexpr std::size_t recordsInAll = 6;

    static fs::path cache(int video) {
        return host().directory() / ("cache" + std::to_string(video));
    }
    static fs::path analysis(int video) { return cache(video) / "analysis"; }
    static fs::path file(int video) { return analysis(video) / "result.json"; }
    static bool isFile(int video) { return fs::is_regular_file(fs::symlink_status(file(video))); }

    /// Runs to the end, which comes with all records. Returns how many tasks were started.
    int run() {
        const int before = host().startCount;
        const auto ends = listener.events().size();
        runToEnd();
        EXPECT_EQ(listener.events().size(), ends + 1);
        EXPECT_EQ(listener.events().back(), KOR::taskEventFinished);
        const auto records = probe().results();
        EXPECT_EQ(records.size(), recordsInAll);
        for (std::size_t i = 0; i < records.size(); ++i) {
            EXPECT_EQ(records[i].posOfMaxScore, i % 2 == 0 ? 100000000 : 600000000);
        }
        return host().startCount - before;
    }
};

/// One of them has a broken cache.
class FileFailure : public FilesOfVideos, public ::testing::WithParamInterface<int> {
protected:
    static int broken() { return GetParam(); }

    static void forgetFiles() {
        for (int i = 0; i < videos; ++i)
            fs::remove(file(i));
    }

    /// Runs over all; while the broken video's file is written, what `hold` gives is held.
    template <typename Hold>
    void runAround(Hold hold) {
        component().start();
        for (int finished = 0; FakeTask* const running = host().runningTask(); ++finished) {
            const bool isLastOfBroken = finished == 2 * broken() + 1;
            const auto held = isLastOfBroken ? hold() : nullptr;
            running->finish();
        }
        EXPECT_EQ(listener.events().back(), KOR::taskEventFinished);
        EXPECT_EQ(probe().results().size(), recordsInAll);
    }

    /// Analyses all, then restores all but the broken one, which is analysed each time.
    void expectOnlyTheBrokenAnalysedAgain() {
        EXPECT_EQ(run(), videos * 2);
        for (int i = 0; i < videos; ++i)
            EXPECT_EQ(isFile(i), i != broken()) << i;
        EXPECT_EQ(run(), 2);
        EXPECT_EQ(run(), 2);
    }
};

TEST_P(FileFailure, DirectoryInPlaceOfTheFile) {
    fs::create_directories(file(broken()));
    expectOnlyTheBrokenAnalysedAgain();
    EXPECT_TRUE(fs::is_directory(file(broken())));
}

TEST_P(FileFailure, FileInPlaceOfTheDirectory) {
    fs::create_directories(cache(broken()));
    std::ofstream(analysis(broken())) << "in the way";
    expectOnlyTheBrokenAnalysedAgain();
    EXPECT_EQ(contentOf(analysis(broken()).string()), "in the way");
}

TEST_P(FileFailure, FileInPlaceOfTheCache) {
    std::ofstream(cache(broken())) << "in the way";
    expectOnlyTheBrokenAnalysedAgain();
    EXPECT_EQ(contentOf(cache(broken()).string()), "in the way");
}

TEST_P(FileFailure, LinkToNowhere) {
    fs::create_directories(analysis(broken()));
    fs::create_symlink(host().directory() / "gone" / "result.json", file(broken()));
    expectOnlyTheBrokenAnalysedAgain();
}

TEST_P(FileFailure, LinkInACircle) {
    fs::create_directories(analysis(broken()));
    fs::create_symlink("result.json", file(broken()));
    expectOnlyTheBrokenAnalysedAgain();
}

TEST_P(FileFailure, LinkToAFullDevice) {
    fs::create_directories(analysis(broken()));
    fs::create_symlink("/dev/full", file(broken()));
    // No device is opened; the link is in the way, is deleted, and a file takes its place.
    EXPECT_EQ(run(), videos * 2);
    EXPECT_TRUE(isFile(broken()));
    EXPECT_EQ(run(), 0);
}

TEST_P(FileFailure, LinkToAFullDeviceThatStays) {
    host().faults.removalsFail = true;
    fs::create_directories(analysis(broken()));
    fs::create_symlink("/dev/full", file(broken()));
    expectOnlyTheBrokenAnalysedAgain();
    const Lines texts = logTexts();
    // In each of the three runs it is neither read nor written.
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "analysisCachePath open failed"), 6);
}

TEST_P(FileFailure, FullDeviceLeavesAPartThatIsNotTaken) {
    for (const rlim_t room : {0U, 1U, 100U, 300U}) {
        SCOPED_TRACE(room);
        forgetFiles();
        runAround([room] { return std::make_unique<FullDevice>(room); });
        EXPECT_EQ(fs::file_size(file(broken())), room);
        EXPECT_EQ(run(), 2);
        EXPECT_GT(fs::file_size(file(broken())), 300U);
        EXPECT_EQ(run(), 0);
    }
}

TEST_P(FileFailure, WithoutADescriptorNothingIsWritten) {
    if (!descriptorsMayRunOut) GTEST_SKIP() << "the sanitizer needs descriptors";
    runAround([] { return std::make_unique<Limit>(RLIMIT_NOFILE, firstFreeDescriptor()); });
    for (int i = 0; i < videos; ++i)
        EXPECT_EQ(isFile(i), i != broken()) << i;
    EXPECT_EQ(run(), 2);
    EXPECT_EQ(run(), 0);
}

TEST_F(FilesOfVideos, AreDeletedAndMadeAgainWithoutDescriptors) {
    if (!descriptorsMayRunOut) GTEST_SKIP() << "the sanitizer needs descriptors";
    run();
    {
        const Limit noDescriptors(RLIMIT_NOFILE, firstFreeDescriptor());
        EXPECT_EQ(run(), videos * 2);
    }
    for (int i = 0; i < videos; ++i)
        EXPECT_FALSE(isFile(i)) << i;
    EXPECT_EQ(run(), videos * 2);
    EXPECT_EQ(run(), 0);
}

INSTANTIATE_TEST_SUITE_P(OfVideo, FileFailure, ::testing::Range(0, 3));

}  // namespace
}  // namespace fake_host
