#include <exception>
#include <memory>
#include <string>

#include "reference_host/ReferenceHost.h"
#include "reference_host/materials/Footage.h"
#include "reference_host/materials/Material.h"
#include "reference_host/materials/cacheName.h"
#include "reference_host/media/inspect.h"

namespace reference_host {

ImportedMaterial importMaterial(const std::filesystem::path& file,
                                const std::filesystem::path& cacheRoot) {
    try {
        media::FootageFacts facts = media::inspect(file);
        const std::string cacheDirectory =
            cacheRoot.empty() ? std::string() : (cacheRoot / cacheName(file)).string();
        auto footage = std::make_shared<Footage>(file, std::move(facts), cacheDirectory);
        return {.object = new Material(std::move(footage)), .error = {}};
    } catch (const std::bad_alloc&) {
        return {.object = nullptr, .error = "there is not enough memory for it"};
    } catch (const std::exception& failure) {
        return {.object = nullptr, .error = failure.what()};
    }
}

MaterialReport reportOf(KOR::IDmBaseObj& material) {
    const auto* known = dynamic_cast<const Material*>(&material);
    return known == nullptr ? MaterialReport{} : known->footage().report();
}

}  // namespace reference_host
