#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/CachedFootage.h"

namespace autotrim {
namespace {

using std::filesystem::path;

std::vector<std::string> outcomesOf(const Json& materials) {
    std::vector<std::string> outcomes;
    for (const Json& entry : materials)
        outcomes.push_back(entry["outcome"]);
    return outcomes;
}

using Outcomes = std::vector<std::string>;

void touch(const path& file) {
    std::filesystem::last_write_time(
        file, std::filesystem::last_write_time(file) + std::chrono::seconds(1));
}

using Restore = CachedFootage;

TEST_F(Restore, GivesAllThatTheAnalysisGave) {
    for (const char* kinds : {"6,7", "4,3,1", "6,5", "2,6"}) {
        const std::vector<std::string> arguments = {"--kinds",   kinds,        "two.mp4",
                                                    "short.mp4", "scenes.mp4", "photo.png"};
        const Json first = analyse(arguments);
        EXPECT_EQ(outcomesOf(first), (Outcomes{"analysed", "default", "analysed", "default"}));
        EXPECT_EQ(analyse(arguments), restored(first)) << kinds;
        EXPECT_EQ(analyse(arguments), restored(first)) << kinds;
    }
}

TEST_F(Restore, GivesTheFacesOfARunThatLookedForThem) {
    const auto expectFaces = [this](const char* kinds, const char* outcome, const Json& faces) {
        const Json entry = analyse({"--kinds", kinds, "two.mp4"})[0];
        EXPECT_EQ(entry["outcome"], outcome) << kinds;
        ASSERT_EQ(entry["results"].size(), 2U);
        for (const Json& record : entry["results"])
            EXPECT_EQ(record["faces"], faces) << kinds;
    };
    expectFaces("6,7", "analysed", 0);
    expectFaces("6,7", "restored", 0);
    expectFaces("6,5", "analysed", nullptr);
    expectFaces("6,5", "restored", nullptr);
}

TEST_F(Restore, LeavesFacesOpenWhereTheyAreNotKnownAnyMore) {
    const Json first = analyse({"two.mp4"})[0];
    for (const path& file : kept()) {
        if (file != onlyResultFile()) std::filesystem::remove(file);
    }
    const Json second = analyse({"two.mp4"})[0];
    EXPECT_EQ(second["outcome"], "restored");
    EXPECT_EQ(withoutFaces(second["results"]), withoutFaces(first["results"]));
    for (const Json& record : second["results"])
        EXPECT_TRUE(record["faces"].is_null());
}

TEST_F(Restore, LooksAgainForFacesInPhotos) {
    const Json first = analyse({"--photos", "photo.png"});
    EXPECT_EQ(outcomesOf(first), Outcomes{"analysed"});
    EXPECT_EQ(analyse({"--photos", "photo.png"}), first);
    const Json plain = analyse({"photo.png"})[0];
    EXPECT_EQ(plain["outcome"], "default");
    EXPECT_TRUE(plain["results"][0]["faces"].is_null());
}

TEST_F(Restore, AnalysesAgainAfterAChangeOfSettings) {
    const std::vector<std::string> unchanged = {"two.mp4"};
    for (const std::vector<std::string>& arguments : {unchanged,
                                                      {"--kinds", "6,7,2", "two.mp4"},
                                                      {"--threshold", "2.5", "two.mp4"},
                                                      {"--min-scene", "1", "two.mp4"},
                                                      {"--kinds", "6,5", "two.mp4"},
                                                      unchanged}) {
        const Json first = analyse(arguments);
        EXPECT_EQ(outcomesOf(first), Outcomes{"analysed"});
        EXPECT_EQ(analyse(arguments), restored(first));
    }
}

TEST_F(Restore, DoesNotMindOtherLimitsOfLength) {
    const Json first = analyse({"two.mp4"});
    EXPECT_EQ(analyse({"--min-length", "5", "two.mp4"}), restored(first));
    EXPECT_EQ(outcomesOf(analyse({"--min-length", "6", "two.mp4"})), Outcomes{"default"});
}

TEST_F(Restore, FollowsAFileThatMoves) {
    const path before = copyOf("two.mp4", "before.mp4");
    Json expected = restored(analyse({before.string()}));
    std::filesystem::create_directory(file("there"));
    const path after = file("there") / "after.mp4";
    std::filesystem::rename(before, after);
    expected[0]["file"] = after.string();
    EXPECT_EQ(analyse({after.string()}), expected);
}

TEST_F(Restore, AnalysesAFileThatChanged) {
    const path clip = copyOf("two.mp4", "clip.mp4");
    const Json first = analyse({clip.string()});
    const auto time = std::filesystem::last_write_time(clip);

    std::ofstream(clip, std::ios::app) << "more";
    std::filesystem::last_write_time(clip, time);
    EXPECT_EQ(analyse({clip.string()}), first);
    touch(clip);
    EXPECT_EQ(analyse({clip.string()}), first);
    // The last byte belongs to no picture.
    std::fstream(clip, std::ios::in | std::ios::out).seekp(-1, std::ios::end) << "!";
    std::filesystem::last_write_time(clip, time);
    EXPECT_EQ(analyse({clip.string()}), first);
    EXPECT_EQ(analyse({clip.string()}), restored(first));
}

TEST_F(Restore, FindsThatAnotherFileTookTheName) {
    const path clip = copyOf("two.mp4", "clip.mp4");
    analyse({clip.string()});
    std::filesystem::remove(clip);
    copyOf("scenes.mp4", "clip.mp4");
    const Json entry = analyse({clip.string()})[0];
    EXPECT_EQ(entry["outcome"], "analysed");
    EXPECT_EQ(entry["duration"], 150000000);
}

/// Something that stands where the results of two.mp4 were; `text` is what they were.
struct Broken {
    const char* name;
    std::function<void(const path& file, const std::string& text)> make;
};

void write(const path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

class BrokenResult : public CachedFootage, public testing::WithParamInterface<Broken> {};

TEST_P(BrokenResult, IsReplacedByAGoodOne) {
    const Json first = analyse({"two.mp4"});
    const path result = onlyResultFile();
    const std::string text = contentOf(result);
    ASSERT_NE(text, "");
    std::filesystem::remove(result);
    GetParam().make(result, text);

    const Ended ended = run({"--cache", cache().string(), "--json", "-", "two.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(materialsOf(ended), first);
    EXPECT_TRUE(std::filesystem::is_regular_file(result));
    EXPECT_EQ(contentOf(result), text);
    EXPECT_EQ(analyse({"two.mp4"}), restored(first));
}

const std::vector<Broken> broken = {
    {"Missing", [](const path&, const std::string&) {}},
    {"Empty", [](const path& file, const std::string&) { write(file, ""); }},
    {"Prefix", [](const path& file,
                  const std::string& text) { write(file, text.substr(0, text.size() / 2)); }},
    {"Unclosed", [](const path& file,
                    const std::string& text) { write(file, text.substr(0, text.size() - 1)); }},
    {"Garbage",
     [](const path& file, const std::string&) { write(file, std::string(1000, '\xFF')); }},
    {"Zeroes", [](const path& file,
                  const std::string& text) { write(file, std::string(text.size(), '\0')); }},
    {"Brackets",
     [](const path& file, const std::string&) { write(file, std::string(1 << 20, '[')); }},
    {"OtherVersion",
     [](const path& file, std::string text) {
         write(file, text.replace(text.find("1.0.0.1"), 7, "1.0.0.2"));
     }},
    {"OtherType",
     [](const path& file, std::string text) {
         write(file, text.replace(text.find("\"begin\": 0"), 10, "\"begin\": \"\""));
     }},
    {"Pipe",
     [](const path& file, const std::string&) { ASSERT_EQ(mkfifo(file.c_str(), 0666), 0); }},
    {"Device", [](const path& file,
                  const std::string&) { std::filesystem::create_symlink("/dev/zero", file); }},
    {"LinkToNowhere",
     [](const path& file, const std::string&) {
         std::filesystem::create_symlink("nowhere.json", file);
     }},
};

INSTANTIATE_TEST_SUITE_P(Restore, BrokenResult, testing::ValuesIn(broken),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(Restore, LeavesADirectoryInTheWay) {
    const Json first = analyse({"two.mp4"});
    const path result = onlyResultFile();
    std::filesystem::remove(result);
    std::filesystem::create_directories(result / "of-the-user");
    const Ended ended = run({"--cache", cache().string(), "--json", "-", "two.mp4"});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, warningOfCache());
    EXPECT_EQ(materialsOf(ended), first);
    EXPECT_TRUE(std::filesystem::exists(result / "of-the-user"));
}

/// While it lives, no process that is started can write more than so much into a file: it gets an
/// error, as from a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit tight{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        std::signal(SIGXFSZ, handler_);
        setrlimit(RLIMIT_FSIZE, &before_);
    }

private:
    rlimit before_{};
    void (*handler_)(int) = SIG_DFL;
};

TEST_F(Restore, RecoversFromAFullDisk) {
    const std::vector<std::string> arguments = {"--cache", cache().string(), "two.mp4"};
    {
        const FullDisk disk(200);
        const Ended ended = Process(arguments, ErrorsTo::pipe, "/dev/null").wait();
        EXPECT_EQ(ended.exitCode, exitAllDone);
        EXPECT_EQ(ended.errors, warningOfCache());
    }
    EXPECT_EQ(contentOf(onlyResultFile()).size(), 200U);
    EXPECT_EQ(run(arguments).errors, "");
    EXPECT_EQ(outcomesOf(analyse({"two.mp4"})), Outcomes{"restored"});
}

TEST_F(Restore, IsNotTriedWithoutACache) {
    Json first = analyse({"two.mp4"});
    const path result = onlyResultFile();
    const std::string text = contentOf(result);
    const auto time = std::filesystem::last_write_time(result);

    Process process({"--no-cache", "--json", "-", "two.mp4"});
    const Ended ended = process.wait();
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(materialsOf(ended), first);
    EXPECT_FALSE(std::filesystem::exists(process.home() / ".cache"));
    EXPECT_EQ(contentOf(result), text);
    EXPECT_EQ(std::filesystem::last_write_time(result), time);
}

TEST_F(Restore, ReportsNothingOddAsProgress) {
    const std::vector<std::string> arguments = {"--cache", cache().string(), "--jobs",
                                                "1",       "--progress",     "machine",
                                                "two.mp4", "scenes.mp4",     "missing"};
    run(arguments);
    EXPECT_EQ(run(arguments).errorLines(),
              (std::vector<std::string>{"autotrim: missing: there is no such file",
                                        "{\"file\":\"scenes.mp4\",\"percent\":100}"}));
}

/// What a run reports of files with the same content: `entry` under each of `names`.
Json underEachName(Json entry, const std::vector<std::string>& names) {
    Json materials = Json::array();
    for (const std::string& name : names) {
        entry["file"] = name;
        materials.push_back(entry);
    }
    return materials;
}

class SameContent : public CachedFootage {
protected:
    /// A clip, named twice, a copy with its times, and links to it.
    std::vector<std::string> names() const {
        const path clip = copyOf("two.mp4", "clip.mp4");
        copyOf("two.mp4", "copy.mp4");
        std::filesystem::create_hard_link(clip, file("hard.mp4"));
        std::filesystem::create_symlink(clip, file("soft.mp4"));
        std::vector<std::string> names;
        for (const char* name : {"clip.mp4", "clip.mp4", "copy.mp4", "hard.mp4", "soft.mp4"})
            names.push_back(file(name).string());
        return names;
    }
};

TEST_F(SameContent, IsAnalysedOnce) {
    const std::vector<std::string> files = names();
    const Json first = analyse(files);
    EXPECT_EQ(first[0]["outcome"], "analysed");
    EXPECT_EQ(first, underEachName(first[0], files));
    EXPECT_EQ(resultFilesIn(cache()).size(), 1U);
    EXPECT_EQ(analyse(files), restored(first));
}

TEST_F(SameContent, IsAnalysedOnceWithoutACache) {
    const path log = file("run.log");
    std::vector<std::string> arguments = {"--no-cache", "--log", log.string()};
    const std::vector<std::string> files = names();
    arguments.insert(arguments.end(), files.begin(), files.end());
    const Json first = analysed(arguments);
    EXPECT_EQ(first, underEachName(first[0], files));
    const std::string text = contentOf(log);
    const std::size_t start = text.find("startScenceAndKeyframeDetect");
    ASSERT_NE(start, std::string::npos) << text;
    EXPECT_EQ(text.find("startScenceAndKeyframeDetect", start + 1), std::string::npos) << text;
}

TEST_F(SameContent, IsNamedOnceInTheProgress) {
    std::vector<std::string> arguments = names();
    arguments.insert(arguments.begin(), {"--cache", cache().string(), "--jobs", "1", "--progress",
                                         "machine", "scenes.mp4", "scenes.mp4"});
    std::vector<std::string> named;
    for (const std::string& line : run(arguments).errorLines()) {
        const std::string name = Json::parse(line)["file"];
        if (named.empty() || named.back() != name) named.push_back(name);
    }
    EXPECT_EQ(named, (std::vector<std::string>{"scenes.mp4", file("clip.mp4").string()}));
}

TEST_F(SameContent, IsSharedByPhotos) {
    const std::vector<std::string> files = {copyOf("photo.png", "a.png").string(),
                                            copyOf("photo.png", "b.png").string()};
    const Json first = analyse({"--photos", files[0], files[1]});
    EXPECT_EQ(first[0]["outcome"], "analysed");
    EXPECT_EQ(first[0]["results"][0]["faces"], 0);
    EXPECT_EQ(first, underEachName(first[0], files));
}

TEST_F(Restore, WarnsOfADamagedFileEachTime) {
    const std::vector<std::string> arguments = {"--cache", cache().string(), "--json", "-",
                                                "damaged.mp4"};
    const Ended first = run(arguments);
    const Ended second = run(arguments);
    EXPECT_EQ(materialsOf(second)[0]["outcome"], "restored");
    EXPECT_EQ(first.errorLines().size(), 1U) << first.errors;
    EXPECT_EQ(second.errors, first.errors);
    // Another analysis has the warning anew, once. How many frames are damaged may differ by one:
    // it depends on the decoder's threads.
    std::vector<std::string> other = arguments;
    other.insert(other.begin(), {"--threshold", "2.5"});
    const std::vector<std::string> lines = run(other).errorLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("autotrim: damaged.mp4: warning: damaged: ")) << lines[0];
}

TEST_F(SameContent, WarnsUnderEachName) {
    const std::string a = copyOf("damaged.mp4", "a.mp4").string();
    const std::string b = copyOf("damaged.mp4", "b.mp4").string();
    const Ended ended = run({"--cache", cache().string(), a, "two.mp4", b});
    EXPECT_EQ(ended.exitCode, exitAllDone);
    const std::vector<std::string> lines = ended.errorLines();
    ASSERT_EQ(lines.size(), 2U) << ended.errors;
    EXPECT_EQ(lines[0].rfind("autotrim: " + a + ": warning: ", 0), 0U) << ended.errors;
    EXPECT_EQ(lines[1].rfind("autotrim: " + b + ": warning: ", 0), 0U) << ended.errors;
    EXPECT_EQ(lines[0].substr(a.size() + 10), lines[1].substr(b.size() + 10));
}

TEST_F(SameContent, IsNotAssumedOfOtherTimes) {
    const path a = copyOf("two.mp4", "a.mp4");
    const path b = copyOf("two.mp4", "b.mp4");
    touch(b);
    analyse({a.string(), b.string()});
    EXPECT_EQ(resultFilesIn(cache()).size(), 2U);
}

/// Whatever two processes do to each other's cache, both end well, and their cache is good then.
TEST_F(Restore, IsSharedByProcesses) {
    const std::vector<std::string> arguments = {"--cache", cache().string(), "--json",   "-",
                                                "two.mp4", "scenes.mp4",     "short.mp4"};
    const Json expected = restored(analysed({"--no-cache", "two.mp4", "scenes.mp4", "short.mp4"}));
    for (int round = 0; round < 6; ++round) {
        const bool isCold = round % 2 == 0;
        if (isCold) run({"cache", "clear", "--cache", cache().string()});
        Process one(arguments);
        Process other(arguments);
        for (Process* process : {&one, &other}) {
            const Ended ended = process->wait();
            EXPECT_EQ(ended.exitCode, exitAllDone) << ended.errors;
            EXPECT_EQ(restored(materialsOf(ended)), expected);
        }
    }
    EXPECT_EQ(materialsOf(run(arguments)), expected);
}

}  // namespace
}  // namespace autotrim
