#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/autotrim/ProgramReport.h"
#include "tests/autotrim/TemporaryDirectory.h"

namespace autotrim {

/// Footage of a test's own, and a cache for it.
class CachedFootage : public testing::Test {
protected:
    std::filesystem::path cache() const { return cache_.path(); }
    std::filesystem::path file(const std::string& name) const { return footage_.path() / name; }

    /// Copies a made clip as `name`, with the times that it has.
    std::filesystem::path copyOf(const std::string& clip, const std::string& name) const;

    /// Runs autotrim with the cache on files that are all good, and returns their entries.
    Json analyse(const std::vector<std::string>& arguments) const;

    /// Returns the only result file in the cache; empty when there is none, or more.
    std::filesystem::path onlyResultFile() const;

    /// What autotrim tells when results could not be kept.
    std::string warningOfCache() const;

    /// Returns what the runs keep: everything below the cache's directory that is no directory.
    std::vector<std::filesystem::path> kept() const;

private:
    TemporaryDirectory footage_;
    TemporaryDirectory cache_;
};

}  // namespace autotrim
