#include "tests/fuzz/RestoreRig.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <rapidjson/document.h>

#include "fake_host/FakeHost.h"
#include "tests/support/ComponentProbe.h"

namespace fuzz {
namespace {

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// How many records a text that was taken has to give.
std::size_t elementsIn(const std::string& text) {
    rapidjson::Document root;
    root.Parse<rapidjson::kParseIterativeFlag>(text.c_str());
    require(!root.HasParseError() && root.IsObject(), "a text was taken that is no JSON object");
    return root.HasMember("result") ? root["result"].Size() : 0;
}

bool isSame(double one, double other) {
    return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

bool isSame(const KOR::MaterialAnalysisResult& one, const KOR::MaterialAnalysisResult& other) {
    const KOR::KorRect& a = one.faceRectOfPhoto;
    const KOR::KorRect& b = other.faceRectOfPhoto;
    return isSame(one.score, other.score) && one.begin == other.begin && one.end == other.end &&
           one.posOfMaxScore == other.posOfMaxScore && isSame(a.x, b.x) && isSame(a.y, b.y) &&
           isSame(a.width, b.width) && isSame(a.height, b.height);
}

}  // namespace

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

RestoreRig::RestoreRig(const Settings& settings) {
    fake_host::host().reset();
    fake_host::host().recording = false;
    const std::filesystem::path cache = fake_host::host().directory();
    file_ = cache / "analysis" / "result.json";
    material_.reset(new fake_host::FakeMedia(fake_host::video("clip.mp4", 1000).cacheIn(cache)));
    component_.reset(createMaterialAnalysis());
    use(settings);
}

RestoreRig::~RestoreRig() {
    component_.reset();
    require(material_->refCount() == 1, "the material got its references back");
    material_.reset();
    require(fake_host::host().live.media == 0 && fake_host::host().live.lists == 0 &&
                fake_host::host().live.logStreams == 0,
            "no object of the host is left");
}

void RestoreRig::use(const Settings& settings) {
    KOR::ComponentProbe probe(*component_);
    probe.setAnalysisKindsOnly(settings.kinds);
    probe.minScenceDuration() = settings.minScenceDuration;
    probe.scenceDetectionThreshold() = settings.scenceDetectionThreshold;
}

std::string RestoreRig::save(const Records& records) {
    std::vector<const KOR::MaterialAnalysisResult*> pointers;
    for (const KOR::MaterialAnalysisResult& record : records)
        pointers.push_back(&record);
    const bool saved =
        KOR::ComponentProbe(*component_).saveMaterialAnalysisResult(material_.get(), pointers);
    require(saved, "the file was written");
    return contentOf(file_);
}

void RestoreRig::write(const std::string& text) {
    std::filesystem::create_directories(file_.parent_path());
    std::ofstream stream(file_, std::ios::binary);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    require(stream.good(), "there is room for the file");
}

std::optional<Records> RestoreRig::restore() {
    KOR::ComponentProbe probe(*component_);
    const std::string text = contentOf(file_);
    const std::size_t before = probe.results().size();
    const bool restored = probe.restoreMaterialAnalysisResult(material_.get());
    Records records = probe.results();
    records.erase(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(before));
    if (!restored) {
        require(records.empty(), "a rejected file gives no record");
        require(!std::filesystem::exists(file_), "a rejected file is gone");
        return std::nullopt;
    }
    require(std::filesystem::exists(file_) && contentOf(file_) == text,
            "a file that was taken is unchanged");
    require(records.size() == elementsIn(text), "there is one record for each element");
    for (const KOR::MaterialAnalysisResult& record : records)
        require(record.media == material_.get(), "a record names its material");
    return records;
}

bool areSame(const Records& one, const Records& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const auto& a, const auto& b) { return isSame(a, b); });
}

}  // namespace fuzz
