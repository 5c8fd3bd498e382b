#include <algorithm>
#include <system_error>
#include <utility>

#include "reference_host/ReferenceHost.h"
#include "reference_host/cache/KeptMaterial.h"
#include "reference_host/cache/factsFile.h"

namespace reference_host {
namespace {

CachedMaterial describe(const cache::KeptMaterial& kept) {
    CachedMaterial material;
    if (std::optional<cache::KeptFacts> facts = cache::keptFacts(kept.directory)) {
        material.file = std::move(facts->file);
    }
    for (const std::filesystem::path& file : kept.files) {
        std::error_code gone;
        const std::uintmax_t size = std::filesystem::file_size(file, gone);
        if (!gone) material.sizeBytes += size;
    }
    material.hasResult = kept.hasResult;
    return material;
}

}  // namespace

CacheListing listCache(const std::filesystem::path& cacheRoot) {
    CacheListing listing;
    for (const cache::KeptMaterial& kept : cache::keptMaterials(cacheRoot)) {
        if (!kept.files.empty()) listing.materials.push_back(describe(kept));
        listing.failures.insert(listing.failures.end(), kept.failures.begin(), kept.failures.end());
    }
    std::sort(listing.materials.begin(), listing.materials.end(),
              [](const auto& left, const auto& right) { return left.file < right.file; });
    return listing;
}

}  // namespace reference_host
