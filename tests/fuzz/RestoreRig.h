#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "fake_host/Counted.h"
#include "fake_host/FakeMedia.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace fuzz {

/// Ends the process with `what` unless `holds`.
void require(bool holds, const char* what);

/// What a result file is written and read under.
struct Settings {
    std::vector<std::int32_t> kinds = {4, 3};
    std::int64_t minScenceDuration = 2;
    double scenceDetectionThreshold = 3.0;
};

using Records = std::vector<KOR::MaterialAnalysisResult>;

/// A component on a fresh fake host, and one material with a result file.
class RestoreRig {
public:
    explicit RestoreRig(const Settings& settings);
    RestoreRig(const RestoreRig&) = delete;
    RestoreRig& operator=(const RestoreRig&) = delete;
    /// Requires that nothing has leaked.
    ~RestoreRig();

    void use(const Settings& settings);

    /// Has the component write the file, and returns its text.
    std::string save(const Records& records);

    /// Puts `text` into the file.
    void write(const std::string& text);

    /// Has the component restore the material, and requires what holds after every restore: either
    /// it was true, the file is unchanged and there is one more record for each element of its
    /// result; or it was false, there is no more record and the file is gone. Returns the records
    /// of a true one.
    std::optional<Records> restore();

private:
    fake_host::Owned<fake_host::FakeMedia> material_;
    fake_host::Owned<KOR::IKorMaterialAnalysis> component_;
    std::filesystem::path file_;
};

/// Whether both have the same fields, bit for bit, media aside.
bool areSame(const Records& one, const Records& other);

}  // namespace fuzz
