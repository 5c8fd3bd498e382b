#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "fake_host/Counted.h"
#include "host/media.h"
#include "host/results.h"
#include "host/tasks.h"

namespace fake_host {

/// What a fake material answers, and what tasks find in it. Built up in one expression:
/// `video("clip.mp4", 100 * second).scenes({{0, 50}}).keyFrames({10})`.
class MediaSpec {
public:
    MediaSpec& typeCode(std::uint32_t code);
    MediaSpec& mediaLength(std::int64_t ticks);
    MediaSpec& sourceType(std::uint32_t code);
    MediaSpec& cacheIn(const std::filesystem::path& directory);
    MediaSpec& withoutSourceMedia();
    MediaSpec& withoutSource();
    MediaSpec& scenes(std::vector<KOR::TickRange> ranges);
    MediaSpec& keyFrames(std::vector<std::int64_t> positions);
    MediaSpec& faceFrames(std::vector<KOR::FaceDetectFrame> frames);
    MediaSpec& entropies(std::vector<KOR::EntropySample> samples);
    MediaSpec& blurs(std::vector<KOR::BlurSample> samples);

    std::string fileName;
    std::uint32_t mediaType = KOR::mediaTypeVideo;
    std::int64_t durationTicks = 0;
    std::int64_t mediaLengthTicks = 0;
    std::uint32_t sourceTypeCode = 0;
    std::string mediaCache;
    bool isSourceMedia = true;
    bool hasSource = true;
    std::vector<KOR::TickRange> sceneResults;
    std::vector<std::int64_t> keyFrameResults;
    std::vector<KOR::FaceDetectFrame> faceResults;
    std::vector<KOR::EntropySample> entropyResults;
    std::vector<KOR::BlurSample> blurResults;
};

MediaSpec video(const std::string& fileName, std::int64_t durationTicks);
MediaSpec photo(const std::string& fileName);

/// A material with its source.
class FakeMedia final : public Counted<KOR::IDmBaseMedia>,
                        public KOR::IDmSourceMedia,
                        public KOR::IDmMediaSource {
public:
    explicit FakeMedia(MediaSpec spec);

    void* queryInterface(const char* name) override;

    std::uint32_t getMediaType() override;
    std::int64_t getDuration() override;
    const char* getFileName() override;

    KOR::IDmMediaSource* getSource() override;
    std::uint32_t getSourceType() override;

    KOR::Status getMediaInfo(const char* key, KOR::KorValue* value) override;
    const char* getMediaInfoText(const char* key) override;

    /// May be changed between the component's questions.
    MediaSpec spec;

    /// Runs whenever the type code is asked for.
    std::function<void()> onTypeQuery;

private:
    ~FakeMedia() override;
};

/// The material as the pointer that lists of materials hold.
inline void* asElement(KOR::IDmBaseObj& object) {
    return &object;
}

}  // namespace fake_host
