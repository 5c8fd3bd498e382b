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

/// What each material takes, however long it is: opening it and looking for the first faces. In
/// small videos (640 columns) that was measured to be as much as about four seconds of them.
constexpr std::int64_t fixedWorkMilliseconds = 4000;

constexpr std::int64_t ticksPerMillisecond = KOR::ticksPerSecond / 1000;

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

/// Takes the records out of the component. Which material each is of shows in its media pointer.
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

bool findFaces(const Kinds& kinds) {
    return std::any_of(kinds.begin(), kinds.end(), [](std::int32_t kind) {
        return kind == KOR::analysisKindFace || kind == KOR::analysisKindFaceAndEntropy;
    });
}

/// See Materials::work().
std::int64_t workOn(KOR::IDmBaseMedia& media, const Options& options) {
    if (typeOf(media) == MaterialType::photo) {
        return options.photos && findFaces(options.kinds) ? fixedWorkMilliseconds : 0;
    }
    const std::int64_t duration = media.getDuration();
    return isLong(duration, options.minLengthSeconds)
               ? fixedWorkMilliseconds + duration / ticksPerMillisecond
               : 0;
}

/// Whether a run by `options` is to look for faces in a photo, has given it its record before that,
/// and has not looked yet.
bool awaitsFaces(const FileReport& report, KOR::IDmBaseObj& material, const Options& options) {
    const bool isWanted = options.photos && findFaces(options.kinds);
    return isWanted && report.type == MaterialType::photo && !report.results.empty() &&
           !reference_host::facesAt(material, report.results.front().posOfMaxScore);
}

/// The host may know of faces from an earlier run, by other kinds: what this one did not look for
/// is left open.
void countFaces(FileReport& report, KOR::IDmBaseObj& material, const Kinds& kinds) {
    if (!findFaces(kinds) || report.outcome == Outcome::byDefault) return;
    for (Record& record : report.results)
        record.faces = reference_host::facesAt(material, record.posOfMaxScore);
}

/// Whether it is a file that ends as JSON does: a disk that is full leaves none, or a part.
bool isWhole(const std::filesystem::path& resultFile) {
    std::error_code notThere;
    // Whatever else stands there could block.
    if (!std::filesystem::is_regular_file(resultFile, notThere)) return false;
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

OpenedFile openFile(const std::string& file, const std::filesystem::path& cacheRoot,
                    std::stop_token stop) {
    auto imported = reference_host::importMaterial(file, cacheRoot, std::move(stop));
    return {file, std::move(imported.error), std::move(imported.contentKey),
            Owned<KOR::IDmBaseObj>(imported.object)};
}

Materials::Materials(std::vector<OpenedFile> files) {
    for (OpenedFile& opened : files) {
        File file{opened.name, opened.error, std::nullopt};
        if (opened.object) file.material = indexOfMaterial(std::move(opened));
        files_.push_back(std::move(file));
    }
}

std::vector<std::int64_t> Materials::work(const Options& options) const {
    std::vector<std::int64_t> work;
    for (const Material& material : materials_)
        work.push_back(workOn(*material.media, options));
    return work;
}

void Materials::insertInto(KOR::IKorMaterialAnalysis& component, const Share& share) const {
    const Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
    bool good = list != nullptr;
    for (const std::size_t index : share)
        good = good && list->append(materials_[index].object.get()) == KOR::statusOk;
    if (!good || component.insertMaterials(list.get(), 0) != KOR::statusOk) {
        throw std::runtime_error("the component does not take the materials");
    }
}

std::size_t Materials::reached(const Share& share) const {
    const auto latest = std::find_if(share.rbegin(), share.rend(), [this](std::size_t index) {
        return reference_host::reportOf(*materials_[index].object).analysed;
    });
    return materials_[latest == share.rend() ? share.back() : *latest].firstFile;
}

void Materials::takeResults(KOR::IKorMaterialAnalysis& component, const Share& share, RunEnd end,
                            const Options& options) {
    RecordsOfMedia records = takeRecords(component);
    // From the last to the first, as a run that has touched a material has passed those before it.
    bool passed = end == RunEnd::complete;
    for (auto index = share.rbegin(); index != share.rend(); ++index) {
        const Material& material = materials_[*index];
        FileReport& report = materials_[*index].report;
        report.type = typeOf(*material.media);
        report.duration = material.media->getDuration();
        report.results = std::move(records[material.media]);
        const bool hasRecords = !report.results.empty();
        const auto facts = reference_host::reportOf(*material.object);
        decideOutcome(report,
                      {.analysed = facts.analysed,
                       .hasRecords = hasRecords,
                       .awaitsFaces = awaitsFaces(report, *material.object, options),
                       .passed = passed,
                       .failure = facts.failure},
                      end, options.minLengthSeconds);
        countFaces(report, *material.object, options.kinds);
        passed = passed || facts.analysed || hasRecords;
    }
}

std::vector<FileReport> Materials::reports() const {
    std::vector<FileReport> reports;
    for (const File& file : files_) {
        FileReport& report =
            reports.emplace_back(file.material ? materials_[*file.material].report : FileReport{});
        report.file = file.name;
        if (!file.material) report.error = file.error;
    }
    return reports;
}

std::vector<Materials::Warning> Materials::warnings() const {
    std::vector<Warning> warnings;
    for (const File& file : files_) {
        if (!file.material) continue;
        KOR::IDmBaseObj& object = *materials_[*file.material].object;
        for (const std::string& text : reference_host::reportOf(object).warnings)
            warnings.push_back({file.name, text});
    }
    return warnings;
}

bool Materials::allKept(const std::vector<FileReport>& reports) const {
    for (std::size_t i = 0; i < files_.size(); ++i) {
        const bool analysedVideo =
            reports[i].outcome == Outcome::analysed && reports[i].type == MaterialType::video;
        if (analysedVideo && lacksKeptRecords(*materials_[*files_[i].material].object)) {
            return false;
        }
    }
    return true;
}

/// Returns the index of the material of this content, which `file` becomes when it is new. The next
/// file is this one.
std::size_t Materials::indexOfMaterial(OpenedFile file) {
    const auto known = std::find_if(
        materials_.begin(), materials_.end(),
        [&file](const Material& material) { return material.contentKey == file.contentKey; });
    const auto index = static_cast<std::size_t>(known - materials_.begin());
    if (known == materials_.end()) {
        auto* const media =
            static_cast<KOR::IDmBaseMedia*>(file.object->queryInterface("IDmBaseMedia"));
        materials_.push_back(
            {std::move(file.contentKey), std::move(file.object), media, files_.size(), {}});
    }
    return index;
}

}  // namespace autotrim
