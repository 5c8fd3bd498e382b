#pragma once

#include <filesystem>
#include <optional>
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

/// The files of one call of the program. Files of the same content, such as one that is given
/// twice, a copy or a link, are one material of the host: it is analysed once, and each of them
/// gets its records.
class Materials {
public:
    /// Opens the next file. Returns why it is no material; empty when it is one. `stop` breaks it
    /// off: the file is then no material.
    std::string open(const std::string& file, const std::filesystem::path& cacheRoot,
                     std::stop_token stop);

    /// Takes in that the next file is no material, and why.
    void skip(const std::string& file, const std::string& reason);

    /// Whether no file is a material.
    bool empty() const { return materials_.empty(); }

    /// Hands the materials over, in the order of the files.
    void insertInto(KOR::IKorMaterialAnalysis& component) const;

    /// Returns the index of the file that a run has come to, once it tells of progress: the first
    /// one of the material that was begun with last. Where none was, the run had nothing to analyse
    /// and is at the last material. There is one.
    std::size_t reached() const;

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
    struct Material {
        std::string contentKey;
        Owned<KOR::IDmBaseObj> object;
        KOR::IDmBaseMedia* media;  ///< of `object`
        std::size_t firstFile;     ///< its index
    };
    struct File {
        std::string name;                     ///< as given
        std::string error;                    ///< why it is no material; empty when it is one
        std::optional<std::size_t> material;  ///< its index
    };

    std::size_t indexOfMaterial(std::string contentKey, Owned<KOR::IDmBaseObj> object);
    std::vector<FileReport> reportsOfMaterials(KOR::IKorMaterialAnalysis& component, RunEnd end,
                                               const Options& options) const;

    std::vector<Material> materials_;
    std::vector<File> files_;
};

}  // namespace autotrim
