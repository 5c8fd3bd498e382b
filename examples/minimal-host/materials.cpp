// Files as materials.
#include <atomic>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

#include "analyse.h"
#include "host/logger.h"
#include "host/validation.h"
#include "host_kit/Counted.h"
#include "host_kit/Source.h"

namespace minimal_host {
namespace {

bool isName(const char* name, std::string_view wanted) {
    return name != nullptr && name == wanted;
}

/// A clip as a source, and as what tasks analyse: these share it with its material.
class ClipSource final : public host_kit::Source,
                         public host_kit::Analysable,
                         public std::enable_shared_from_this<ClipSource> {
public:
    /// Keeps nothing where `cacheRoot` is empty; otherwise in another place for every content, as
    /// far as size and time tell of it.
    ClipSource(const std::string& path, const std::string& cacheRoot) : clip(path) {
        if (cacheRoot.empty()) return;
        const auto time = std::filesystem::last_write_time(clip.file()).time_since_epoch().count();
        const auto size = std::to_string(std::filesystem::file_size(clip.file()));
        const auto name = std::hash<std::string>()(path + " " + size + " " + std::to_string(time));
        cacheDirectory_ = cacheRoot + "/" + std::to_string(name);
    }

    std::shared_ptr<host_kit::Analysable> analysable() override { return shared_from_this(); }
    KOR::Status getMediaInfo(const char* key, KOR::KorValue* value) override {
        const std::string text = getMediaInfoText(key);
        const bool isCache = isName(key, KOR::mediaInfoKey::media_cache);
        const bool isKnown = isCache || isName(key, KOR::mediaInfoKey::media_length);
        // Part of a path would be another path.
        if (!isKnown || value == nullptr || text.size() >= sizeof value->asText) {
            return KOR::statusFailed;
        }
        value->type = isCache ? KOR::KorValue::text : KOR::KorValue::int64;
        value->asInt64 = 0;
        if (isCache) value->asText[text.copy(value->asText, text.size())] = '\0';
        return KOR::statusOk;
    }
    const char* getMediaInfoText(const char* key) override {
        const bool isCache = isName(key, KOR::mediaInfoKey::media_cache);
        return isCache && !hasFailed_ ? cacheDirectory_.c_str() : "";
    }

    host_kit::AnalysisResults analyse(const host_kit::AnalysisRequest& request,
                                      const std::stop_token& stop,
                                      host_kit::ProgressMeter& progress) override {
        return minimal_host::analyse(clip, request, stop, progress);
    }
    void noteFailure(const std::string&) override { hasFailed_ = true; }

    const Clip clip;

private:
    std::string cacheDirectory_;
    std::atomic<bool> hasFailed_{false};
};

class Material final : public host_kit::Counted<KOR::IDmBaseMedia>, public KOR::IDmSourceMedia {
public:
    explicit Material(std::shared_ptr<ClipSource> source) : source_(std::move(source)) {}

    void* queryInterface(const char* name) override {
        if (isName(name, "IDmBaseObj")) return static_cast<KOR::IDmBaseObj*>(this);
        if (isName(name, "IDmBaseMedia")) return static_cast<KOR::IDmBaseMedia*>(this);
        if (isName(name, "IDmSourceMedia")) return static_cast<KOR::IDmSourceMedia*>(this);
        return nullptr;
    }
    std::uint32_t getMediaType() override {
        return source_->clip.isVideo() ? KOR::mediaTypeVideo : KOR::mediaTypePhoto;
    }
    std::int64_t getDuration() override { return source_->clip.durationTicks(); }
    const char* getFileName() override { return source_->clip.path().c_str(); }
    KOR::IDmMediaSource* getSource() override { return source_.get(); }
    std::uint32_t getSourceType() override { return 0; }

private:
    const std::shared_ptr<ClipSource> source_;
};

}  // namespace
}  // namespace minimal_host

KOR::KorLoggerWrapper* loggerWrapper(std::int32_t) {
    return nullptr;
}

KOR::IDmBaseObj* createValidationMaterial(const char* file, const char* cacheDirectory) try {
    using namespace minimal_host;
    if (file == nullptr || cacheDirectory == nullptr) return nullptr;
    return new Material(std::make_shared<ClipSource>(file, cacheDirectory));
} catch (const std::exception&) {
    return nullptr;
}
