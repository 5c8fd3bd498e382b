#include "reference_host/materials/Material.h"

#include <cstring>
#include <string_view>

#include "reference_host/tasks/FootageAnalysis.h"

namespace reference_host {
namespace {

/// A source that can be read by position: none of the codes with a meaning.
constexpr std::uint32_t sourceTypeSeekable = 0;

}  // namespace

std::shared_ptr<host_kit::Analysable> FootageSource::analysable() {
    return std::make_shared<FootageAnalysis>(footage_);
}

KOR::Status FootageSource::getMediaInfo(const char* key, KOR::KorValue* value) {
    if (key == nullptr || value == nullptr) return KOR::statusFailed;
    if (std::string_view(key) == KOR::mediaInfoKey::media_length) {
        value->type = KOR::KorValue::int64;
        value->asInt64 = 0;
        return KOR::statusOk;
    }
    if (std::string_view(key) == KOR::mediaInfoKey::media_cache) {
        const std::string_view text = footage_->cacheDirectory();
        // Part of a path is another path.
        if (text.size() >= sizeof(value->asText)) return KOR::statusFailed;
        value->type = KOR::KorValue::text;
        std::memcpy(value->asText, text.data(), text.size());
        value->asText[text.size()] = '\0';
        return KOR::statusOk;
    }
    return KOR::statusFailed;
}

const char* FootageSource::getMediaInfoText(const char* key) {
    const bool known = key != nullptr && std::string_view(key) == KOR::mediaInfoKey::media_cache;
    return known ? footage_->cacheDirectory() : "";
}

Material::Material(std::shared_ptr<Footage> footage)
    : source_(std::move(footage)), fileName_(source_.footage()->file().string()) {}

void* Material::queryInterface(const char* name) {
    if (name == nullptr) return nullptr;
    const std::string_view wanted = name;
    if (wanted == "IDmBaseObj") return static_cast<KOR::IDmBaseObj*>(this);
    if (wanted == "IDmBaseMedia") return static_cast<KOR::IDmBaseMedia*>(this);
    if (wanted == "IDmSourceMedia") return static_cast<KOR::IDmSourceMedia*>(this);
    return nullptr;
}

std::uint32_t Material::getMediaType() {
    return footage().facts().isVideo ? KOR::mediaTypeVideo : KOR::mediaTypePhoto;
}

std::int64_t Material::getDuration() {
    return footage().facts().durationTicks;
}

std::uint32_t Material::getSourceType() {
    return sourceTypeSeekable;
}

}  // namespace reference_host
