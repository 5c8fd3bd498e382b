// The result file of a material: written after its analysis, taken instead of one in a later run.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "host/files.h"
#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"
#include "modules/BusinessLayer/MaterialAnalysis/ResultCacheReader.h"
#include "modules/BusinessLayer/MaterialAnalysis/ResultCacheText.h"

namespace KOR {

namespace {

/// Returns the directory that keeps what is computed for `media`. Null where there is none; a line
/// in the name of `function` says so, unless `media` is of a sort that cannot have one.
const char* mediaCacheOf(IDmBaseMedia* media, const char* function) {
    IDmMediaSource* const source = sourceOf(media);
    if (source == nullptr) return nullptr;
    const char* const mediaCache = source->getMediaInfoText(mediaInfoKey::media_cache);
    if (kor_strlen(mediaCache) != 0) return mediaCache;
    logLine(function, "mediaCache path is empty");
    return nullptr;
}

/// A longer file is not read, as if it were empty: no file may take the host's memory. This is some
/// 300,000 records as they are written.
constexpr std::uintmax_t longestTextBytes = 64 << 20;

/// Returns the file that `path` names. The empty path, which opens nothing, where the text is no
/// UTF-8 and the system's names cannot be without.
std::filesystem::path fileAt(const Path& path) {
    const std::string& text = path.string();
    try {
        return std::u8string(text.begin(), text.end());
    } catch (const std::system_error&) {
        return {};
    }
}

/// Whether something stands at `file` whose opening could wait or act: a directory, a pipe, a
/// device.
bool isNoRegularFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

/// Returns the text in `file`; nothing where it does not open.
std::optional<std::string> textIn(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t sizeBytes = std::filesystem::file_size(file, error);
    if (error || isNoRegularFile(file)) return std::nullopt;
    std::ifstream stream(file);
    if (!stream) return std::nullopt;
    if (sizeBytes > longestTextBytes) return std::string();
    std::string text(sizeBytes, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

}  // namespace

/// Takes the records of `media` from its result file. False when it has none of this run's kind; a
/// file that is there but of no use is deleted.
bool KorMaterialAnalysis::restoreMaterialAnalysisResult(IDmBaseMedia* media) {
    constexpr const char* function = "KOR::KorMaterialAnalysis::restoreMaterialAnalysisResult";
    const char* const mediaCache = mediaCacheOf(media, function);
    if (mediaCache == nullptr) return false;
    const Path file = PathUtil::join(Path(mediaCache), Path("/analysis/result.json"));
    logLine(function, "read analysisCachePath: ", file.string());
    if (!PathUtil::exists(file)) {
        logLine(function, "analysisCachePath not exists");
        return false;
    }
    const auto reject = [&file](const char* why) {
        logLine(function, why);
        FileUtil::remove(file);
        return false;
    };
    const std::optional<std::string> text = textIn(fileAt(file));
    if (!text) return reject("analysisCachePath open failed");
    const ResultCacheReading reading = readResultCache(*text, resultCacheHeader());
    if (reading.rejection != nullptr) return reject(reading.rejection);
    appendResults(*media, reading.results);
    return true;
}

/// Appends a record of `media` for each of `results`: all of them or, without memory, none.
void KorMaterialAnalysis::appendResults(IDmBaseMedia& media,
                                        const std::vector<MaterialAnalysisResult>& results) {
    std::vector<OwnedResult> records;
    records.reserve(results.size());
    for (const MaterialAnalysisResult& result : results) {
        OwnedResult& record = records.emplace_back(makeResult(media));
        *record = result;
        record->media = &media;
    }
    analysisResults.insert(analysisResults.end(), std::make_move_iterator(records.begin()),
                           std::make_move_iterator(records.end()));
}

/// Writes the records of one material to its result file. False when nothing was written.
bool KorMaterialAnalysis::saveMaterialAnalysisResult(
    IDmBaseMedia* media, const std::vector<const MaterialAnalysisResult*>& results) {
    constexpr const char* function = "KOR::KorMaterialAnalysis::saveMaterialAnalysisResult";
    const char* const mediaCache = mediaCacheOf(media, function);
    if (mediaCache == nullptr) return false;
    const Path directory = PathUtil::join(Path(mediaCache), Path("/analysis"));
    if (!PathUtil::exists(directory)) DirUtil::create(directory);

    // Complete in memory before the file is opened: what fails until then leaves the file alone.
    const std::string text = resultCacheText(resultCacheHeader(), results);
    const Path path = PathUtil::join(directory, Path("/result.json"));
    logLine(function, "write analysisCachePath: ", path.string());
    const std::filesystem::path file = fileAt(path);
    std::ofstream stream;
    if (!isNoRegularFile(file)) stream.open(file);
    if (!stream.is_open()) {
        logLine(function, "analysisCachePath open failed");
        return false;
    }
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    return true;
}

ResultCacheHeader KorMaterialAnalysis::resultCacheHeader() const {
    return {resultVersion, analysisKinds, minScenceDuration, scenceDetectionThreshold};
}

}  // namespace KOR
