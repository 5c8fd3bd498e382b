#pragma once

#include <cstdlib>
#include <filesystem>

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

private:
    std::filesystem::path clips_;
};

}  // namespace autotrim
