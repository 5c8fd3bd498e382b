#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "autotrim/Options.h"
#include "autotrim/Outcome.h"
#include "autotrim/Owned.h"
#include "autotrim/Report.h"
#include "host/media.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace autotrim {

/// The files of one call of the program, each opened as a material of the host where it is one. A
/// file that is given twice makes two materials.
class Materials {
public:
    /// Opens the next file. Returns why it is no material; empty when it is one. `stop` breaks it
    /// off: the file is then no material.
    std::string open(const std::string& file, const std::filesystem::path& cacheRoot,
                     std::stop_token stop);

    /// Takes in that the next file was not opened, and why.
    void skip(const std::string& file, const std::string& reason);

    /// Whether no file is a material.
    bool empty() const;

    /// Hands the materials over, in order.
    void insertInto(KOR::IKorMaterialAnalysis& component) const;

    /// Returns the index of the file that was last begun with, materials or not; 0 before that.
    std::size_t latestBegun() const;

    /// Returns what has become of each file in a run by `options`.
    std::vector<FileReport> reports(KOR::IKorMaterialAnalysis& component, RunEnd end,
                                    const Options& options) const;

    /// What was wrong with a file that could be used all the same.
    struct Warning {
        std::string file;
        std::string text;
    };
    std::vector<Warning> warnings() const;

    /// Whether the records of every video that `reports`, as returned by reports(), calls analysed
    /// are kept in its cache, or it has none. Those of photos never are.
    bool allKept(const std::vector<FileReport>& reports) const;

private:
    struct Entry {
        FileReport report;  ///< as it stands before the run
        Owned<KOR::IDmBaseObj> object;
        KOR::IDmBaseMedia* media = nullptr;  ///< of `object`; null for a file that is no material
    };

    std::vector<Entry> entries_;
};

}  // namespace autotrim
