#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "reference_host/ReferenceHost.h"
#include "reference_host/cache/contentKey.h"
#include "reference_host/cache/factsFile.h"
#include "reference_host/materials/Footage.h"
#include "reference_host/materials/Material.h"
#include "reference_host/media/RegularFile.h"
#include "reference_host/media/inspect.h"
#include "reference_host/media/libraryVersions.h"
#include "reference_host/tasks/FaceDetectors.h"

namespace reference_host {
namespace {

namespace fs = std::filesystem;

/// Returns the path from the root on, without links on the way where they can be followed; the
/// file's own name stays.
std::string absolutePath(const fs::path& file) {
    const fs::path place = fs::absolute(file);
    std::error_code error;
    const fs::path directory = fs::canonical(place.parent_path(), error);
    return (error ? place : directory / place.filename()).string();
}

/// Returns what is known of the file, from the cache where these libraries have put it there. Looks
/// at the file and keeps what it finds otherwise. An empty directory keeps nothing.
cache::KeptFacts factsOf(const fs::path& file, const ImportedContent& content,
                         const fs::path& cacheDirectory, const std::stop_token& stop) {
    cache::KeptFacts facts;
    if (!cacheDirectory.empty()) facts = cache::keptFacts(cacheDirectory).value_or(facts);
    const std::string place = absolutePath(file);
    const std::string madeBy = media::libraryVersions();
    const bool isKnown = facts.madeBy == madeBy;
    if (isKnown && facts.file == place) return facts;
    if (!isKnown) {
        facts.footage = media::inspect(file, stop);
        facts.madeBy = madeBy;
        // What the analysis of a video has noted belongs to its results, which stay.
        if (!facts.footage.isVideo) {
            facts.analysisWarnings.clear();
            facts.faceCounts.clear();
        }
    }
    facts.file = place;
    // Another content may have taken the file's place since the key was made.
    const bool isOfKey = isKnown || cache::hasContentKey(file, content.key, content.faceModel);
    if (!cacheDirectory.empty() && isOfKey) cache::keepFacts(cacheDirectory, facts);
    return facts;
}

}  // namespace

ImportedMaterial importMaterial(const std::filesystem::path& file,
                                const std::filesystem::path& cacheRoot, std::stop_token stop) {
    try {
        const std::string faceModel = FaceDetectors::instance().modelFingerprint();
        const std::string key = cache::contentKey(media::RegularFile(file), faceModel);
        const ImportedContent content{key, faceModel};
        const fs::path cacheDirectory = cacheRoot.empty() ? fs::path() : cacheRoot / key;
        auto footage = std::make_shared<Footage>(
            file, content, factsOf(file, content, cacheDirectory, stop), cacheDirectory.string());
        return {.object = new Material(std::move(footage)), .error = {}, .contentKey = key};
    } catch (const std::bad_alloc&) {
        return {.object = nullptr, .error = "there is not enough memory for it", .contentKey = {}};
    } catch (const std::exception& failure) {
        // What fails because it was stopped says nothing about the file.
        return {.object = nullptr,
                .error = stop.stop_requested() ? "interrupted" : failure.what(),
                .contentKey = {}};
    }
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
