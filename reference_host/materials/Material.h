#pragma once

#include <memory>
#include <string>

#include "host_kit/Counted.h"
#include "host_kit/Source.h"
#include "reference_host/materials/Footage.h"

namespace reference_host {

/// The source of a material that comes from a media file.
class FootageSource final : public host_kit::Source {
public:
    explicit FootageSource(std::shared_ptr<Footage> footage) : footage_(std::move(footage)) {}

    const std::shared_ptr<Footage>& footage() const { return footage_; }

    std::shared_ptr<host_kit::Analysable> analysable() override;
    KOR::Status getMediaInfo(const char* key, KOR::KorValue* value) override;
    const char* getMediaInfoText(const char* key) override;

private:
    std::shared_ptr<Footage> footage_;
};

/// A media file as a material.
class Material final : public host_kit::Counted<KOR::IDmBaseMedia>, public KOR::IDmSourceMedia {
public:
    explicit Material(std::shared_ptr<Footage> footage);

    const Footage& footage() const { return *source_.footage(); }

    void* queryInterface(const char* name) override;

    std::uint32_t getMediaType() override;
    std::int64_t getDuration() override;
    const char* getFileName() override { return fileName_.c_str(); }

    KOR::IDmMediaSource* getSource() override { return &source_; }
    std::uint32_t getSourceType() override;

private:
    ~Material() override = default;

    FootageSource source_;
    std::string fileName_;
};

}  // namespace reference_host
