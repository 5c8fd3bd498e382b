#include "fake_host/FakeMedia.h"

#include <string_view>
#include <utility>

#include "fake_host/FakeHost.h"
#include "fake_host/paths.h"

namespace fake_host {

MediaSpec& MediaSpec::typeCode(std::uint32_t code) {
    mediaType = code;
    return *this;
}

MediaSpec& MediaSpec::mediaLength(std::int64_t ticks) {
    mediaLengthTicks = ticks;
    return *this;
}

MediaSpec& MediaSpec::sourceType(std::uint32_t code) {
    sourceTypeCode = code;
    return *this;
}

MediaSpec& MediaSpec::cacheIn(const std::filesystem::path& directory) {
    mediaCache = utf8Of(directory);
    return *this;
}

MediaSpec& MediaSpec::withoutSourceMedia() {
    isSourceMedia = false;
    return *this;
}

MediaSpec& MediaSpec::withoutSource() {
    hasSource = false;
    return *this;
}

MediaSpec& MediaSpec::scenes(std::vector<KOR::TickRange> ranges) {
    sceneResults = std::move(ranges);
    return *this;
}

MediaSpec& MediaSpec::keyFrames(std::vector<std::int64_t> positions) {
    keyFrameResults = std::move(positions);
    return *this;
}

MediaSpec& MediaSpec::faceFrames(std::vector<KOR::FaceDetectFrame> frames) {
    faceResults = std::move(frames);
    return *this;
}

MediaSpec& MediaSpec::entropies(std::vector<KOR::EntropySample> samples) {
    entropyResults = std::move(samples);
    return *this;
}

MediaSpec& MediaSpec::blurs(std::vector<KOR::BlurSample> samples) {
    blurResults = std::move(samples);
    return *this;
}

MediaSpec video(const std::string& fileName, std::int64_t durationTicks) {
    MediaSpec spec;
    spec.fileName = fileName;
    spec.durationTicks = durationTicks;
    return spec;
}

MediaSpec photo(const std::string& fileName) {
    MediaSpec spec;
    spec.fileName = fileName;
    spec.mediaType = KOR::mediaTypePhoto;
    spec.durationTicks = 1;
    return spec;
}

FakeMedia::FakeMedia(MediaSpec answers) : Counted(host().live.media), spec(std::move(answers)) {}

FakeMedia::~FakeMedia() {
    if (host().recording) host().note(spec.fileName + " destruction");
}

void* FakeMedia::queryInterface(const char* name) {
    const std::string_view wanted = name == nullptr ? "" : name;
    if (wanted == "IDmBaseMedia") return static_cast<KOR::IDmBaseMedia*>(this);
    if (wanted == "IDmBaseObj") return static_cast<KOR::IDmBaseObj*>(this);
    if (wanted == "IDmSourceMedia" && spec.isSourceMedia) {
        return static_cast<KOR::IDmSourceMedia*>(this);
    }
    return nullptr;
}

std::uint32_t FakeMedia::getMediaType() {
    if (onTypeQuery) onTypeQuery();
    return spec.mediaType;
}

std::int64_t FakeMedia::getDuration() {
    return spec.durationTicks;
}

const char* FakeMedia::getFileName() {
    return spec.fileName.c_str();
}

KOR::IDmMediaSource* FakeMedia::getSource() {
    return spec.hasSource ? this : nullptr;
}

std::uint32_t FakeMedia::getSourceType() {
    return spec.sourceTypeCode;
}

KOR::Status FakeMedia::getMediaInfo(const char* key, KOR::KorValue* value) {
    if (key == nullptr || value == nullptr) return KOR::statusFailed;
    if (std::string_view(key) != KOR::mediaInfoKey::media_length) return KOR::statusFailed;
    value->type = KOR::KorValue::int64;
    value->asInt64 = spec.mediaLengthTicks;
    return KOR::statusOk;
}

const char* FakeMedia::getMediaInfoText(const char* key) {
    if (key == nullptr || std::string_view(key) != KOR::mediaInfoKey::media_cache) return "";
    return spec.mediaCache.c_str();
}

}  // namespace fake_host
