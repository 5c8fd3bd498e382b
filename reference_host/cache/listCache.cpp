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

std::vector<CachedMaterial> listCache(const std::filesystem::path& cacheRoot) {
    std::vector<CachedMaterial> materials;
    for (const cache::KeptMaterial& kept : cache::keptMaterials(cacheRoot)) {
        if (!kept.files.empty()) materials.push_back(describe(kept));
    }
    std::sort(materials.begin(), materials.end(),
              [](const auto& left, const auto& right) { return left.file < right.file; });
    return materials;
}

}  // namespace reference_host
