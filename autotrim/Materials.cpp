#include "autotrim/Materials.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

#include <unistd.h>

#include "host/lists.h"
#include "reference_host/ReferenceHost.h"

namespace autotrim {
namespace {

using RecordsOfMedia = std::map<const KOR::IDmBaseMedia*, std::vector<Record>>;

MaterialType typeOf(KOR::IDmBaseMedia& media) {
    switch (media.getMediaType()) {
        case KOR::mediaTypeAudioVideo:
        case KOR::mediaTypeVideo:
        case KOR::mediaTypeSequence:
            return MaterialType::video;
        default:
            return MaterialType::photo;
    }
}

Record recordOf(const KOR::MaterialAnalysisResult& result) {
    const KOR::KorRect& face = result.faceRectOfPhoto;
    return {result.score,
            result.begin,
            result.end,
            result.posOfMaxScore,
            {face.x, face.y, face.width, face.height},
            std::nullopt};
}

/// Takes the records out of the component. Which material each is of shows in its media pointer:
/// names may occur twice.
RecordsOfMedia takeRecords(KOR::IKorMaterialAnalysis& component) {
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    if (!list || component.getResults(list.get()) != KOR::statusOk) {
        throw std::runtime_error("the component does not give its results");
    }
    RecordsOfMedia records;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        const auto* result = static_cast<const KOR::MaterialAnalysisResult*>(list->at(i));
        records[result->media].push_back(recordOf(*result));
        // Each copy comes with two references on its material.
        result->media->release();
        result->media->release();
    }
    return records;
}

void countFaces(std::vector<Record>& records, KOR::IDmBaseObj& material) {
    for (Record& record : records)
        record.faces = reference_host::facesAt(material, record.posOfMaxScore);
}

bool findFaces(const Kinds& kinds) {
    return std::any_of(kinds.begin(), kinds.end(), [](std::int32_t kind) {
        return kind == KOR::analysisKindFace || kind == KOR::analysisKindFaceAndEntropy;
    });
}

/// Whether a run by `options` is to look for faces in a photo, has given it its record before that,
/// and has not looked yet.
bool awaitsFaces(const FileReport& report, const Options& options) {
    const bool isWanted = options.photos && findFaces(options.kinds);
    return isWanted && report.type == MaterialType::photo && !report.results.empty() &&
           !report.results.front().faces;
}

/// Whether the file is one that ends as JSON does: a disk that is full leaves none, or a part.
bool isWhole(const std::filesystem::path& resultFile) {
    std::ifstream stream(resultFile, std::ios::binary | std::ios::ate);
    return stream && stream.seekg(-1, std::ios::end) && stream.get() == '}';
}

/// Whether the material has a cache and its records are not there. A file that is there and cannot
/// be written holds those of an earlier run.
bool lacksKeptRecords(KOR::IDmBaseObj& material) {
    auto* const media =
        static_cast<KOR::IDmSourceMedia*>(material.queryInterface("IDmSourceMedia"));
    const std::filesystem::path cache(
        media->getSource()->getMediaInfoText(KOR::mediaInfoKey::media_cache));
    const std::filesystem::path resultFile = cache / "analysis" / "result.json";
    return !cache.empty() && (access(resultFile.c_str(), W_OK) != 0 || !isWhole(resultFile));
}

}  // namespace

std::string Materials::open(const std::string& file, const std::filesystem::path& cacheRoot,
                            std::stop_token stop) {
    const auto imported = reference_host::importMaterial(file, cacheRoot, std::move(stop));
    Entry entry;
    entry.report.file = file;
    entry.report.error = imported.error;
    entry.object.reset(imported.object);
    if (entry.object) {
        entry.media =
            static_cast<KOR::IDmBaseMedia*>(imported.object->queryInterface("IDmBaseMedia"));
        entry.report.type = typeOf(*entry.media);
        entry.report.duration = entry.media->getDuration();
    }
    entries_.push_back(std::move(entry));
    return imported.error;
}

void Materials::skip(const std::string& file, const std::string& reason) {
    Entry entry;
    entry.report.file = file;
    entry.report.error = reason;
    entries_.push_back(std::move(entry));
}

bool Materials::empty() const {
    for (const Entry& entry : entries_) {
        if (entry.object) return false;
    }
    return true;
}

void Materials::insertInto(KOR::IKorMaterialAnalysis& component) const {
    const Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
    bool good = list != nullptr;
    for (const Entry& entry : entries_) {
        if (good && entry.object) good = list->append(entry.object.get()) == KOR::statusOk;
    }
    if (!good || component.insertMaterials(list.get(), 0) != KOR::statusOk) {
        throw std::runtime_error("the component does not take the materials");
    }
}

std::size_t Materials::latestBegun() const {
    for (std::size_t i = entries_.size(); i-- > 0;) {
        const Entry& entry = entries_[i];
        if (entry.object && reference_host::reportOf(*entry.object).analysed) return i;
    }
    return 0;
}

std::vector<FileReport> Materials::reports(KOR::IKorMaterialAnalysis& component, RunEnd end,
                                           const Options& options) const {
    RecordsOfMedia records = takeRecords(component);
    std::vector<FileReport> reports(entries_.size());
    // From the last to the first, as a run that has touched a material has passed those before it.
    bool passed = end == RunEnd::complete;
    for (std::size_t i = entries_.size(); i-- > 0;) {
        const Entry& entry = entries_[i];
        reports[i] = entry.report;
        if (!entry.object) continue;
        const auto facts = reference_host::reportOf(*entry.object);
        reports[i].results = std::move(records[entry.media]);
        countFaces(reports[i].results, *entry.object);
        const bool hasRecords = !reports[i].results.empty();
        decideOutcome(reports[i],
                      {.analysed = facts.analysed,
                       .hasRecords = hasRecords,
                       .awaitsFaces = awaitsFaces(reports[i], options),
                       .passed = passed,
                       .failure = facts.failure},
                      end, options.minLengthSeconds);
        passed = passed || facts.analysed || hasRecords;
    }
    return reports;
}

std::vector<Materials::Warning> Materials::warnings() const {
    std::vector<Warning> warnings;
    for (const Entry& entry : entries_) {
        if (!entry.object) continue;
        for (const std::string& text : reference_host::reportOf(*entry.object).warnings) {
            warnings.push_back({entry.report.file, text});
        }
    }
    return warnings;
}

bool Materials::allKept(const std::vector<FileReport>& reports) const {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const bool analysedVideo =
            reports[i].outcome == Outcome::analysed && reports[i].type == MaterialType::video;
        if (analysedVideo && lacksKeptRecords(*entries_[i].object)) return false;
    }
    return true;
}

}  // namespace autotrim
