#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "reference_host/ReferenceHost.h"
#include "reference_host/cache/KeptFacts.h"
#include "reference_host/media/FootageFacts.h"
#include "reference_host/media/StoredPicture.h"
#include "reference_host/scenes/FootageRecord.h"

namespace reference_host {

/// What stood at a file's path when it was imported: its content key, and the fingerprint of the
/// face model that is part of it.
struct ImportedContent {
    std::string key;
    std::string faceModel;
};

/// A media file and what has become of it. Materials and the runs that read it share it, so that a
/// run may outlive its material. Any thread.
class Footage {
public:
    /// `known` is what is known of the file, perhaps by an earlier run. `cacheDirectory` is UTF-8,
    /// empty where nothing may be kept.
    Footage(std::filesystem::path file, ImportedContent content, cache::KeptFacts known,
            std::string cacheDirectory);

    const std::filesystem::path& file() const { return file_; }
    const media::FootageFacts& facts() const { return known_.footage; }

    /// Returns the directory for what is computed; empty after a failure, or where it was computed
    /// from another content.
    const char* cacheDirectory() const { return isTainted_ ? "" : cacheDirectory_.c_str(); }

    /// Takes in that an analysis begins. What an earlier run has noted is forgotten: it belongs to
    /// that run's results, and this one has others.
    void noteAnalysis();

    /// Takes in that an analysis ends well. Its results are not kept, and there is a warning, where
    /// another content has taken the place of the one that was imported, or the file is gone: it
    /// may be found elsewhere again, and these results would be taken for its own.
    void noteAnalysed();

    /// Takes the reason of a failed task; the first one is reported. Nothing that is known of the
    /// file is kept any more.
    void noteFailure(const std::string& reason);

    /// Takes a warning; one that is known already is not repeated. Of a video it is kept for later
    /// runs, which may take the results from the cache.
    void noteWarning(const std::string& warning);

    MaterialReport report() const;

    /// How many faces there are in pictures, by their positions in ticks.
    using FaceCounts = std::map<std::int64_t, std::int32_t>;

    /// Takes what a face detection has counted, in the place of an earlier one. Of a video it is
    /// kept for later runs, which may take the results from the cache.
    void noteFaces(FaceCounts counts);

    /// Returns how many faces the last detection, of this run or of an earlier one, found in the
    /// picture at `positionTicks`; none where it did not look there.
    std::optional<std::int32_t> facesAt(std::int64_t positionTicks) const;

    /// The record of the last complete decode, or null. It spares a task that looks for keyframes
    /// in known scenes another decode.
    std::shared_ptr<const scenes::FootageRecord> record() const;
    void keepRecord(std::shared_ptr<const scenes::FootageRecord> record);

    /// Pictures by their positions in ticks.
    using Pictures = std::map<std::int64_t, std::shared_ptr<const media::StoredPicture>>;

    /// Takes pictures that may be asked for soon, in the place of those before. They stay until
    /// they have been looked at or another footage needs their memory.
    void keepPictures(Pictures pictures);

    /// Returns the picture that was kept for `positionTicks`; null where there is none.
    std::shared_ptr<const media::StoredPicture> keptPicture(std::int64_t positionTicks) const;

private:
    void addWarning(const std::string& warning);
    void forgetAnalysis();
    void keepAnalysis() const;
    const FaceCounts& facesOfOthers() const;

    const std::filesystem::path file_;
    const ImportedContent content_;
    /// After the making, only what an analysis has noted changes, and that under the mutex.
    cache::KeptFacts known_;
    const std::string cacheDirectory_;
    std::atomic<bool> isTainted_{false};
    mutable std::mutex mutex_;
    MaterialReport report_;
    /// What another process may have counted since the import, read when it is first asked for.
    mutable std::optional<FaceCounts> facesOfOthers_;
    std::shared_ptr<const scenes::FootageRecord> record_;
    Pictures pictures_;
};

}  // namespace reference_host
