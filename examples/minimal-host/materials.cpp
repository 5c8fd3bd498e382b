// Files as materials.
#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <string_view>

#include "analyse.h"
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
    /// Keeps nothing where `cacheRoot` is empty.
    ClipSource(const std::string& path, const std::string& cacheRoot) : clip(path) {
        const std::size_t name = std::hash<std::string>()(path);
        if (!cacheRoot.empty()) cacheDirectory_ = cacheRoot + "/" + std::to_string(name);
    }

    std::shared_ptr<host_kit::Analysable> analysable() override { return shared_from_this(); }
    KOR::Status getMediaInfo(const char* key, KOR::KorValue* value) override {
        if (value == nullptr || !isName(key, KOR::mediaInfoKey::media_length)) {
            return KOR::statusFailed;
        }
        value->type = KOR::KorValue::int64;
        value->asInt64 = 0;
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

KOR::IDmBaseObj* createValidationMaterial(const char* file, const char* cacheDirectory) try {
    using namespace minimal_host;
    if (file == nullptr || cacheDirectory == nullptr) return nullptr;
    return new Material(std::make_shared<ClipSource>(file, cacheDirectory));
} catch (const std::exception&) {
    return nullptr;
}
