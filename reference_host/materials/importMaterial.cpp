#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "reference_host/ReferenceHost.h"
#include "reference_host/materials/Footage.h"
#include "reference_host/materials/Material.h"
#include "reference_host/materials/cacheName.h"
#include "reference_host/media/inspect.h"

namespace reference_host {

ImportedMaterial importMaterial(const std::filesystem::path& file,
                                const std::filesystem::path& cacheRoot, std::stop_token stop) {
    try {
        media::FootageFacts facts = media::inspect(file, stop);
        const std::string cacheDirectory =
            cacheRoot.empty() ? std::string() : (cacheRoot / cacheName(file)).string();
        auto footage = std::make_shared<Footage>(file, std::move(facts), cacheDirectory);
        return {.object = new Material(std::move(footage)), .error = {}, .contentKey = {}};
    } catch (const std::bad_alloc&) {
        return {.object = nullptr, .error = "there is not enough memory for it", .contentKey = {}};
    } catch (const std::exception& failure) {
        // What fails because it was stopped says nothing about the file.
        return {.object = nullptr,
                .error = stop.stop_requested() ? "interrupted" : failure.what(),
                .contentKey = {}};
    }
}

std::vector<CachedMaterial> listCache(const std::filesystem::path&) {
    return {};
}

ClearedCache clearCache(const std::filesystem::path&) {
    return {};
}

MaterialReport reportOf(KOR::IDmBaseObj& material) {
    const auto* known = dynamic_cast<const Material*>(&material);
    return known == nullptr ? MaterialReport{} : known->footage().report();
}

std::optional<std::int32_t> facesAt(KOR::IDmBaseObj& material, std::int64_t positionTicks) {
    const auto* known = dynamic_cast<const Material*>(&material);
    return known == nullptr ? std::nullopt : known->footage().facesAt(positionTicks);
}

}  // namespace reference_host
