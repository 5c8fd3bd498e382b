#include "Clip.h"
#include "Counted.h"
#include "host/validation.h"

namespace minimal_host {
namespace {

class Material final : public Counted<KOR::IDmBaseMedia>, public KOR::IDmSourceMedia {
public:
    explicit Material(std::shared_ptr<Clip> clip) : clip_(std::move(clip)) {}

    void* queryInterface(const char* name) override {
        if (isName(name, "IDmBaseMedia")) return static_cast<KOR::IDmBaseMedia*>(this);
        if (isName(name, "IDmSourceMedia")) return static_cast<KOR::IDmSourceMedia*>(this);
        return Counted::queryInterface(name);
    }
    std::uint32_t getMediaType() override {
        return clip_->isVideo ? KOR::mediaTypeVideo : KOR::mediaTypePhoto;
    }
    std::int64_t getDuration() override { return clip_->duration(); }
    const char* getFileName() override { return clip_->file.c_str(); }
    KOR::IDmMediaSource* getSource() override { return clip_.get(); }
    std::uint32_t getSourceType() override { return 0; }  // its pictures are reached by position

private:
    const std::shared_ptr<Clip> clip_;
};

}  // namespace
}  // namespace minimal_host

KOR::IDmBaseObj* createValidationMaterial(const char* file, const char* cacheDirectory) try {
    if (file == nullptr || cacheDirectory == nullptr) return nullptr;
    return new minimal_host::Material(std::make_shared<minimal_host::Clip>(file, cacheDirectory));
} catch (const std::exception&) {
    return nullptr;
}
