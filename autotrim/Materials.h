#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "autotrim/Options.h"
#include "autotrim/Outcome.h"
#include "autotrim/Owned.h"
#include "autotrim/Report.h"
#include "autotrim/Shares.h"
#include "host/media.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace autotrim {

/// What has become of a file that was to be opened.
struct OpenedFile {
    std::string name;               ///< as given
    std::string error;              ///< why it is no material; empty when it is one
    std::string contentKey;         ///< equal for files of the same content; empty after an error
    Owned<KOR::IDmBaseObj> object;  ///< the material; null after an error
};

/// Opens a file. `stop` breaks it off: the file is then no material. Any thread.
OpenedFile openFile(const std::string& file, const std::filesystem::path& cacheRoot,
                    std::stop_token stop);

/// The files of one call of the program. Files of the same content, such as one that is given
/// twice, a copy or a link, are one material of the host: it is analysed once, and each of them
/// gets its records.
///
/// Materials are named by their indices, which are in the order of their first files.
class Materials {
public:
    explicit Materials(std::vector<OpenedFile> files);

    /// Returns how much a run by `options` has to do for each material: about how many milliseconds
    /// of footage take as long. That is 0 for those that are kept whole.
    std::vector<std::int64_t> work(const Options& options) const;

    /// Hands the materials of a share over.
    void insertInto(KOR::IKorMaterialAnalysis& component, const Share& share) const;

    /// Returns the index of the file that a run over `share`, which is not empty, has come to, once
    /// it tells of progress: the first one of the material that was begun with last. Where none
    /// was, the run had nothing to analyse and is at the last material. Any thread, while nothing
    /// else than this is called.
    std::size_t reached(const Share& share) const;

    /// Takes in that a run of `component` by `options` over `share` is over, and what it leaves
    /// behind.
    void takeResults(KOR::IKorMaterialAnalysis& component, const Share& share, RunEnd end,
                     const Options& options);

    /// Returns what has become of each file, once the results of every material have been taken.
    std::vector<FileReport> reports() const;

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
        FileReport report;         ///< of each of its files, which it does not name
    };
    struct File {
        std::string name;                     ///< as given
        std::string error;                    ///< why it is no material; empty when it is one
        std::optional<std::size_t> material;  ///< its index
    };

    std::size_t indexOfMaterial(OpenedFile file);

    std::vector<Material> materials_;
    std::vector<File> files_;
};

}  // namespace autotrim
