#include "reference_host/materials/Footage.h"

#include <algorithm>
#include <utility>

#include "reference_host/cache/contentKey.h"
#include "reference_host/cache/factsFile.h"

namespace reference_host {

Footage::Footage(std::filesystem::path file, ImportedContent content, cache::KeptFacts known,
                 std::string cacheDirectory)
    : file_(std::move(file)),
      content_(std::move(content)),
      known_(std::move(known)),
      cacheDirectory_(std::move(cacheDirectory)) {
    report_.warnings = known_.footage.warnings;
    report_.warnings.insert(report_.warnings.end(), known_.analysisWarnings.begin(),
                            known_.analysisWarnings.end());
}

void Footage::noteAnalysis() {
    const std::scoped_lock lock(mutex_);
    if (std::exchange(report_.analysed, true)) return;
    report_.warnings = known_.footage.warnings;
    forgetAnalysis();
}

void Footage::noteAnalysed() {
    if (cache::hasContentKey(file_, content_.key, content_.faceModel)) return;
    const std::scoped_lock lock(mutex_);
    forgetAnalysis();
    isTainted_ = true;
    addWarning("the file was changed or moved while it was analysed");
}

void Footage::noteFailure(const std::string& reason) {
    const std::scoped_lock lock(mutex_);
    if (report_.failure.empty()) report_.failure = reason;
    // What is known of the file may be why: the next run looks at it anew.
    if (*cacheDirectory() != '\0') cache::forgetFacts(cacheDirectory_);
    isTainted_ = true;
}

void Footage::noteWarning(const std::string& warning) {
    const std::scoped_lock lock(mutex_);
    addWarning(warning);
}

void Footage::addWarning(const std::string& warning) {
    std::vector<std::string>& all = report_.warnings;
    if (std::find(all.begin(), all.end(), warning) != all.end()) return;
    all.push_back(warning);
    known_.analysisWarnings.push_back(warning);
    keepAnalysis();
}

MaterialReport Footage::report() const {
    const std::scoped_lock lock(mutex_);
    return report_;
}

void Footage::noteFaces(FaceCounts counts) {
    const std::scoped_lock lock(mutex_);
    if (counts == known_.faceCounts) return;
    known_.faceCounts = std::move(counts);
    keepAnalysis();
}

void Footage::forgetAnalysis() {
    if (known_.faceCounts.empty() && known_.analysisWarnings.empty()) return;
    known_.faceCounts.clear();
    known_.analysisWarnings.clear();
    keepAnalysis();
}

void Footage::keepAnalysis() const {
    // No run takes the results of a photo from the cache.
    const bool isKept = facts().isVideo && *cacheDirectory() != '\0';
    if (isKept) cache::keepFacts(cacheDirectory_, known_);
}

std::optional<std::int32_t> Footage::facesAt(std::int64_t positionTicks) const {
    const auto countIn = [positionTicks](const FaceCounts& counts) {
        const auto found = counts.find(positionTicks);
        return found == counts.end() ? std::nullopt : std::optional(found->second);
    };
    const std::scoped_lock lock(mutex_);
    const auto count = countIn(known_.faceCounts);
    return count || report_.analysed ? count : countIn(facesOfOthers());
}

const Footage::FaceCounts& Footage::facesOfOthers() const {
    if (facesOfOthers_) return *facesOfOthers_;
    facesOfOthers_.emplace();
    if (*cacheDirectory() == '\0') return *facesOfOthers_;
    if (auto kept = cache::keptFacts(cacheDirectory_)) {
        *facesOfOthers_ = std::move(kept->faceCounts);
    }
    return *facesOfOthers_;
}

std::shared_ptr<const scenes::FootageRecord> Footage::record() const {
    const std::scoped_lock lock(mutex_);
    return record_;
}

void Footage::keepRecord(std::shared_ptr<const scenes::FootageRecord> record) {
    const std::scoped_lock lock(mutex_);
    record_ = std::move(record);
}

void Footage::keepPictures(Pictures pictures) {
    const std::scoped_lock lock(mutex_);
    pictures_ = std::move(pictures);
}

std::shared_ptr<const media::StoredPicture> Footage::keptPicture(std::int64_t positionTicks) const {
    const std::scoped_lock lock(mutex_);
    const auto found = pictures_.find(positionTicks);
    return found == pictures_.end() ? nullptr : found->second;
}

}  // namespace reference_host
