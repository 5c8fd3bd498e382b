# Faults in writing result files.

add_component_mutant(cachewrite-line-feed-at-end
  SOURCE ResultCacheText.cpp
  REPLACE [[    return text.GetString();]]
  BY [[    return std::string(text.GetString()) + "\n";]]
  CAUGHT_BY cachewrite.exact-bytes)

add_component_mutant(cachewrite-end-before-begin
  SOURCE ResultCacheText.cpp
  REPLACE [[    writer.Key("begin");
    writer.Int64(result.begin);
    writer.Key("end");
    writer.Int64(result.end);]]
  BY [[    writer.Key("end");
    writer.Int64(result.end);
    writer.Key("begin");
    writer.Int64(result.begin);]]
  CAUGHT_BY cachewrite.exact-bytes)

add_component_mutant(cachewrite-other-name
  SOURCE ResultCache.cpp
  REPLACE [[Path("/result.json")]]
  BY [[Path("/results.json")]]
  CAUGHT_BY cachewrite.path-is-logged restore.refused-file-is-replaced
    restore.own-file-gives-same-records)

add_component_mutant(cachewrite-in-ascii-paths-only
  SOURCE ResultCache.cpp
  REPLACE [[    const std::string& text = path.string();]]
  BY [[    const std::string& text = path.string();
    if (text.find("素材") != std::string::npos) return {};]]
  CAUGHT_BY cachewrite.path-is-utf-8)

add_component_mutant(cachewrite-into-missing-directory
  SOURCE ResultCache.cpp
  REPLACE [[    if (!PathUtil::exists(directory)) DirUtil::create(directory);
]]
  BY [[]]
  CAUGHT_BY cachewrite.directory-is-made cachewrite.failing-directory-is-logged)

add_component_mutant(cachewrite-directory-always-made
  SOURCE ResultCache.cpp
  REPLACE [[if (!PathUtil::exists(directory)) DirUtil]]
  BY [[DirUtil]]
  CAUGHT_BY cachewrite.directory-is-not-made-anew)

add_component_mutant(cachewrite-kinds-with-blanks
  SOURCE ResultCacheText.cpp
  REPLACE [[if (!text.empty()) text += ",";]]
  BY [[if (!text.empty()) text += ", ";]]
  CAUGHT_BY cachewrite.kinds-in-their-order restore.other-kinds restore.starts-no-task)

add_component_mutant(cachewrite-threshold-of-the-start
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        scenceDetectionThreshold = payloadOf]]
  BY [[        if (currentTaskIndex < 0) scenceDetectionThreshold = payloadOf]]
  CAUGHT_BY cachewrite.settings-as-they-stand)

add_component_mutant(cachewrite-three-decimals
  SOURCE ResultCacheText.cpp
  REPLACE [[writer.Double(header.scenceDetectionThreshold);]]
  BY [[writer.SetMaxDecimalPlaces(3);
    writer.Double(header.scenceDetectionThreshold);]]
  CAUGHT_BY cachewrite.doubles-are-shortest)

add_component_mutant(cachewrite-small-integers
  SOURCE ResultCacheText.cpp
  REPLACE [[writer.Int64(result.begin);]]
  BY [[writer.Int(static_cast<int>(result.begin));]]
  CAUGHT_BY cachewrite.integers-to-their-limits)

add_component_mutant(cachewrite-0-for-no-number
  SOURCE ResultCacheText.cpp
  REPLACE [[writer.Double(result.score);]]
  BY [[writer.Double(result.score - result.score == 0.0 ? result.score : 0.0);]]
  CAUGHT_BY cachewrite.no-number-has-no-value)

add_component_mutant(cachewrite-appended
  SOURCE ResultCache.cpp
  REPLACE [[stream.open(file);]]
  BY [[stream.open(file, std::ios::app);]]
  CAUGHT_BY cachewrite.overwrites-all)

add_component_mutant(cachewrite-failure-unsaid
  SOURCE ResultCache.cpp
  REPLACE [[        logLine(function, "analysisCachePath open failed");
        return false;]]
  BY [[        return false;]]
  CAUGHT_BY cachewrite.unwritable-file-is-logged cachewrite.failing-directory-is-logged)

add_component_mutant(cachewrite-empty-path-unsaid
  SOURCE ResultCache.cpp
  REPLACE [[    logLine(function, "mediaCache path is empty");
]]
  BY [[]]
  CAUGHT_BY cachewrite.empty-cache-path-is-logged restore.empty-cache-path-is-logged)

add_component_mutant(cachewrite-missing-source-said
  SOURCE ResultCache.cpp
  REPLACE [[    if (source == nullptr) return nullptr;]]
  BY [[    if (source == nullptr) {
        logLine(function, "mediaCache path is empty");
        return nullptr;
    }]]
  CAUGHT_BY cachewrite.no-source-is-silent restore.no-source-is-silent)

add_component_mutant(cachewrite-all-records-so-far
  SOURCE AutoTrim.cpp
  REPLACE [[    std::vector<const MaterialAnalysisResult*> ofMaterial;]]
  BY [[    std::vector<const MaterialAnalysisResult*> ofMaterial;
    for (const OwnedResult& earlier : analysisResults)
        ofMaterial.push_back(earlier.get());]]
  CAUGHT_BY cachewrite.each-material-has-its-file)

add_component_mutant(cachewrite-default-records-too
  SOURCE AutoTrim.cpp
  REPLACE [[    result->score = 1.0;
]]
  BY [[    result->score = 1.0;
    saveMaterialAnalysisResult(media, {result.get()});
]]
  CAUGHT_BY cachewrite.default-records-are-not-written)

add_component_mutant(file-opened-before-logged
  SOURCE ResultCache.cpp
  REPLACE [[    logLine(function, "write analysisCachePath: ", path.string());
    const std::filesystem::path file = fileAt(path);
    std::ofstream stream;
    if (!isNoRegularFile(file)) stream.open(file);]]
  BY [[    const std::filesystem::path file = fileAt(path);
    std::ofstream stream;
    if (!isNoRegularFile(file)) stream.open(file);
    logLine(function, "write analysisCachePath: ", path.string());]]
  CAUGHT_BY cachewrite.path-is-logged)

add_component_mutant(file-written-twice
  SOURCE ResultCache.cpp
  REPLACE [[    stream.write(text.data(), static_cast<std::streamsize>(text.size()));]]
  BY [[    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    std::ofstream(file.string() + ".bak") << text;]]
  CAUGHT_BY cachewrite.leaves-nothing-beside)

add_component_mutant(directory-looked-for-by-itself
  SOURCE ResultCache.cpp
  REPLACE [[if (!PathUtil::exists(directory))]]
  BY [[if (!std::filesystem::exists(fileAt(directory)))]]
  CAUGHT_BY cachewrite.existence-is-the-hosts)

add_component_mutant(file-joined-by-itself
  SOURCE ResultCache.cpp
  REPLACE [[PathUtil::join(Path(mediaCache), Path("/analysis"))]]
  BY [[Path(std::string(mediaCache) + "/analysis")]]
  CAUGHT_BY cachewrite.path-is-joined-by-host)
