// The result file of a material.

#include <fstream>

#include "host/files.h"
#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"
#include "modules/BusinessLayer/MaterialAnalysis/ResultCacheText.h"

namespace KOR {

/// Writes the records of one material to its result file. False when nothing was written.
bool KorMaterialAnalysis::saveMaterialAnalysisResult(
    IDmBaseMedia* media, const std::vector<const MaterialAnalysisResult*>& results) {
    constexpr const char* function = "KOR::KorMaterialAnalysis::saveMaterialAnalysisResult";
    IDmMediaSource* const source = sourceOf(media);
    if (source == nullptr) return false;
    const char* const mediaCache = source->getMediaInfoText(mediaInfoKey::media_cache);
    if (kor_strlen(mediaCache) == 0) {
        logLine(function, "mediaCache path is empty");
        return false;
    }
    const Path directory = PathUtil::join(Path(mediaCache), Path("/analysis"));
    if (!PathUtil::exists(directory)) DirUtil::create(directory);

    // Complete in memory before the file is opened: what fails until then leaves the file alone.
    const std::string text = resultCacheText(
        {resultVersion, analysisKinds, minScenceDuration, scenceDetectionThreshold}, results);
    const Path file = PathUtil::join(directory, Path("/result.json"));
    logLine(function, "write analysisCachePath: ", file.string());
    std::ofstream stream(file.string());
    if (!stream) {
        logLine(function, "analysisCachePath open failed");
        return false;
    }
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    return true;
}

}  // namespace KOR
