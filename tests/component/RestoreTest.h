#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "fake_host/paths.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {

using Records = std::vector<KOR::MaterialAnalysisResult>;

/// A result file that a component with the kinds 4 and 3 takes as its own, unless a test gives a
/// member another value, as JSON. An empty text leaves the member out.
struct ResultText {
    std::string version = R"("1.0.0.1")";
    std::string analysisTypes = R"("4,3")";
    std::string minScenceDuration = "2";
    std::string scenceDetectionThreshold = "3.0";
    std::string result = R"([{"score": 0.5, "begin": 1, "end": 3, "posOfMaxScore": 2}])";

    std::string text() const {
        std::string members;
        const auto add = [&members](const char* key, const std::string& value) {
            if (value.empty()) return;
            members += (members.empty() ? "\"" : ", \"") + std::string(key) + "\": " + value;
        };
        add("version", version);
        add("analysisTypes", analysisTypes);
        add("minScenceDuration", minScenceDuration);
        add("scenceDetectionThreshold", scenceDetectionThreshold);
        add("result", result);
        return "{" + members + "}";
    }
};

/// The same file with one record, whose members are these.
inline std::string textOfRecord(const std::string& members) {
    return ResultText{.result = "[{" + members + "}]"}.text();
}

/// A component with the kinds 4 and 3, and a video with a directory for its result file.
class RestoreTest : public ComponentTest {
protected:
    RestoreTest() {
        probe().setAnalysisKindsOnly({4, 3});
        std::filesystem::create_directories(file().parent_path());
    }

    static std::filesystem::path file() { return host().directory() / "analysis" / "result.json"; }

    static void put(const std::string& content) {
        std::ofstream(file(), std::ios::binary) << content;
    }

    /// Whether anything is there, a link that leads nowhere included.
    static bool fileIsThere() {
        return std::filesystem::symlink_status(file()).type() !=
               std::filesystem::file_type::not_found;
    }

    bool restore() { return probe().restoreMaterialAnalysisResult(&material); }

    /// What restoring logs once it has a path, with `message` unless that is empty.
    static std::string linesWith(const std::string& message) {
        const std::string log = "log restoreMaterialAnalysisResult: \"";
        const std::string path = log + "read analysisCachePath: <dir>/analysis/result.json\"\n";
        return "\n" + path + (message.empty() ? "" : log + message + "\"\n");
    }

    /// Restores `content`, which must be taken and left as it is. Returns the records that it gave.
    Records restored(const std::string& content) {
        SCOPED_TRACE(content.substr(0, 500));
        const auto before = static_cast<std::ptrdiff_t>(probe().results().size());
        put(content);
        journal();
        EXPECT_TRUE(restore());
        EXPECT_EQ(trace(), linesWith(""));
        EXPECT_EQ(contentOf(file()), content);
        const Records all = probe().results();
        return {all.begin() + before, all.end()};
    }

    /// The one record that a file with these members gives.
    KOR::MaterialAnalysisResult restoredRecord(const std::string& members) {
        const Records records = restored(textOfRecord(members));
        EXPECT_EQ(records.size(), 1U) << members;
        return records.empty() ? KOR::MaterialAnalysisResult{} : records[0];
    }

    /// Restores what stands at the path, which must be refused with `message` and change nothing.
    void expectRefusal(const std::string& message) {
        const std::size_t before = probe().results().size();
        const std::uint32_t references = material.refCount();
        journal();
        EXPECT_FALSE(restore());
        EXPECT_EQ(trace(), linesWith(message));
        EXPECT_EQ(probe().results().size(), before);
        EXPECT_EQ(material.refCount(), references);
    }

    /// Restores `content`, which must be refused with `message` and deleted.
    void expectDeleted(const std::string& content, const std::string& message) {
        SCOPED_TRACE(content.substr(0, 500));
        put(content);
        expectRefusal(message);
        EXPECT_FALSE(fileIsThere());
    }

    bool save(const Records& records) {
        std::vector<const KOR::MaterialAnalysisResult*> pointers;
        for (const auto& one : records)
            pointers.push_back(&one);
        return probe().saveMaterialAnalysisResult(&material, pointers);
    }

    FakeMedia& material = make(video("clip.mp4", 1000).cacheIn(host().directory()));
};

}  // namespace fake_host
