#include "reference_host/materials/Footage.h"

#include <algorithm>
#include <utility>

namespace reference_host {

Footage::Footage(std::filesystem::path file, media::FootageFacts facts, std::string cacheDirectory)
    : file_(std::move(file)), facts_(std::move(facts)), cacheDirectory_(std::move(cacheDirectory)) {
    report_.warnings = facts_.warnings;
}

void Footage::noteAnalysis() {
    const std::scoped_lock lock(mutex_);
    report_.analysed = true;
}

void Footage::noteFailure(const std::string& reason) {
    const std::scoped_lock lock(mutex_);
    if (report_.failure.empty()) report_.failure = reason;
    failed_ = true;
}

void Footage::noteWarning(const std::string& warning) {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string>& known = report_.warnings;
    if (std::find(known.begin(), known.end(), warning) == known.end()) known.push_back(warning);
}

MaterialReport Footage::report() const {
    const std::scoped_lock lock(mutex_);
    return report_;
}

void Footage::noteFaces(FaceCounts counts) {
    const std::scoped_lock lock(mutex_);
    faceCounts_ = std::move(counts);
}

std::optional<std::int32_t> Footage::facesAt(std::int64_t positionTicks) const {
    const std::scoped_lock lock(mutex_);
    const auto found = faceCounts_.find(positionTicks);
    return found == faceCounts_.end() ? std::nullopt : std::optional(found->second);
}

std::shared_ptr<const scenes::FootageRecord> Footage::record() const {
    const std::scoped_lock lock(mutex_);
    return record_;
}

void Footage::keepRecord(std::shared_ptr<const scenes::FootageRecord> record) {
    const std::scoped_lock lock(mutex_);
    record_ = std::move(record);
}

}  // namespace reference_host
