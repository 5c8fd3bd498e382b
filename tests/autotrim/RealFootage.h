#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace autotrim {

/// Tests on the footage in the directory that MATERIAL_ANALYSIS_CLIPS names; skipped without it.
class RealFootage : public testing::Test {
protected:
    void SetUp() override {
        const char* const directory = std::getenv("MATERIAL_ANALYSIS_CLIPS");
        if (directory == nullptr) GTEST_SKIP() << "MATERIAL_ANALYSIS_CLIPS is not set";
        clips_ = directory;
    }

    const std::filesystem::path& clips() const { return clips_; }

    std::filesystem::path clip(const std::string& name) const { return clips_ / name; }

    /// Returns all videos among the clips.
    std::vector<std::filesystem::path> videos() const {
        const std::set<std::string> endings = {".mp4", ".mkv", ".gif"};
        std::vector<std::filesystem::path> found;
        for (const auto& entry : std::filesystem::directory_iterator(clips_)) {
            if (endings.contains(entry.path().extension())) found.push_back(entry.path());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    std::filesystem::path clips_;
};

}  // namespace autotrim
