# Faults in deciding whether a result file is taken.

add_component_mutant(restore-analysed-all-the-same
  SOURCE ResultCache.cpp
  REPLACE [[    appendResults(*media, reading.results);
    return true;]]
  BY [[    appendResults(*media, reading.results);
    return false;]]
  CAUGHT_BY restore.starts-no-task restore.own-file-gives-same-records)

add_component_mutant(restore-missing-file-unsaid
  SOURCE ResultCache.cpp
  REPLACE [[        logLine(function, "analysisCachePath not exists");
]]
  BY [[]]
  CAUGHT_BY restore.missing-file-is-logged)

add_component_mutant(restore-unopenable-file-as-broken
  SOURCE ResultCache.cpp
  REPLACE [[reject("analysisCachePath open failed")]]
  BY [[reject("cache result invalidate")]]
  CAUGHT_BY restore.unopenable-file-is-deleted)

add_component_mutant(restore-refused-file-stays
  SOURCE ResultCache.cpp
  REPLACE [[        FileUtil::remove(file);
]]
  BY [[]]
  CAUGHT_BY restore.unopenable-file-is-deleted restore.no-version restore.other-threshold
    restore.deletes-without-logger restoretext.comments)

add_component_mutant(restore-any-version
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (version == nullptr) return "No version";
    if (!version->IsString()) return invalid;
    return textOf(*version) == expected ? nullptr : "version changed";]]
  BY [[    return version == version || expected.empty() ? nullptr : invalid;]]
  CAUGHT_BY restore.no-version restore.other-version restore.first-reason-counts
    restoretext.setting-of-other-type)

add_component_mutant(restore-version-as-c-text-prefix
  SOURCE ResultCacheReader.cpp
  REPLACE [[return textOf(*version) == expected]]
  BY [[return textOf(*version).starts_with(expected)]]
  CAUGHT_BY restore.other-version)

add_component_mutant(restore-any-kinds
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (kinds == nullptr) return "No analysisTypes";
    if (!kinds->IsString()) return invalid;
    return textOf(*kinds) == joinedKinds(expected) ? nullptr : "analysisTypes changed";]]
  BY [[    return kinds == kinds || expected.empty() ? nullptr : invalid;]]
  CAUGHT_BY restore.no-kinds restore.other-kinds restore.first-reason-counts
    restoretext.setting-of-other-type)

add_component_mutant(restore-any-minimum
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (minimum == nullptr) return "No minScenceDuration";
    if (!minimum->IsNumber()) return invalid;
    const bool isEqual = minimum->IsInt64() && minimum->GetInt64() == expected;]]
  BY [[    const bool isEqual = minimum == minimum || expected == 0;]]
  CAUGHT_BY restore.no-minimum restore.other-minimum restore.first-reason-counts
    restoretext.setting-of-other-type)

add_component_mutant(restore-minimum-truncated
  SOURCE ResultCacheReader.cpp
  REPLACE [[minimum->IsInt64() && minimum->GetInt64() == expected]]
  BY [[static_cast<std::int64_t>(minimum->GetDouble()) == expected]]
  CAUGHT_BY restore.other-minimum)

add_component_mutant(restore-any-threshold
  SOURCE ResultCacheReader.cpp
  REPLACE [[    if (threshold == nullptr) return "No scenceDetectionThreshold";
    if (!threshold->IsNumber()) return invalid;]]
  BY [[    if (threshold == nullptr || !threshold->IsNumber()) return nullptr;]]
  CAUGHT_BY restore.no-threshold restore.first-reason-counts restoretext.setting-of-other-type)

add_component_mutant(restore-threshold-only-upwards
  SOURCE ResultCacheReader.cpp
  REPLACE [[std::abs(threshold->GetDouble() - expected)]]
  BY [[(threshold->GetDouble() - expected)]]
  CAUGHT_BY restore.other-threshold)

add_component_mutant(restore-threshold-exact
  SOURCE ResultCacheReader.cpp
  REPLACE [[thresholdTolerance = 0.001]]
  BY [[thresholdTolerance = 0.0]]
  CAUGHT_BY restore.near-threshold restore.threshold-off-by-a-thousandth)

add_component_mutant(restore-threshold-below-tolerance
  SOURCE ResultCacheReader.cpp
  REPLACE [[> thresholdTolerance;]]
  BY [[>= thresholdTolerance;]]
  CAUGHT_BY restore.threshold-off-by-a-thousandth)

add_component_mutant(restore-threshold-has-to-compare
  SOURCE ResultCacheReader.cpp
  REPLACE [[const bool isOff = std::abs(threshold->GetDouble() - expected) > thresholdTolerance;]]
  BY [[const bool isOff = !(std::abs(threshold->GetDouble() - expected) <= thresholdTolerance);]]
  CAUGHT_BY restore.threshold-that-is-no-number)

add_component_mutant(restore-records-in-front
  SOURCE ResultCache.cpp
  REPLACE [[analysisResults.insert(analysisResults.end(),]]
  BY [[analysisResults.insert(analysisResults.begin(),]]
  CAUGHT_BY restore.records-are-appended-in-order)

add_component_mutant(restore-material-once
  SOURCE ResultCache.cpp
  REPLACE [[    std::vector<OwnedResult> records;]]
  BY [[    if (!analysisResults.empty() && analysisResults.back()->media == &media) return;
    std::vector<OwnedResult> records;]]
  CAUGHT_BY restore.same-material-twice)

add_component_mutant(restore-reference-kept
  SOURCE ResultCache.cpp
  REPLACE [[        record->media = &media;]]
  BY [[        record->media = &media;
        media.addRef();]]
  CAUGHT_BY restore.records-take-a-reference)

add_component_mutant(restore-unopenable-file-taken
  SOURCE ResultCache.cpp
  REPLACE [[    if (!text) return reject("analysisCachePath open failed");]]
  BY [[    if (!text) return true;]]
  CAUGHT_BY restore.directory-in-its-place restore.unopenable-file-is-deleted)

add_component_mutant(restore-undeletable-file-taken
  SOURCE ResultCache.cpp
  REPLACE [[        FileUtil::remove(file);
        return false;]]
  BY [[        return !FileUtil::remove(file);]]
  CAUGHT_BY restore.undeletable-file-does-not-matter)

add_component_mutant(restore-every-material
  SOURCE RunDriver.cpp
  REPLACE [[    while (IDmBaseMedia* const media = currentMaterial()) {]]
  BY [[    while (IDmBaseMedia* const media = currentMaterial()) {
        restoreMaterialAnalysisResult(media);]]
  CAUGHT_BY restore.photo-reads-no-file restore.short-video-reads-no-file)

add_component_mutant(restore-deletes-by-itself
  SOURCE ResultCache.cpp
  REPLACE [[        FileUtil::remove(file);]]
  BY [[        std::error_code error;
        std::filesystem::remove(fileAt(file), error);]]
  CAUGHT_BY restore.undeletable-file-does-not-matter)

add_component_mutant(restore-looks-by-itself
  SOURCE ResultCache.cpp
  REPLACE [[    if (!PathUtil::exists(file)) {]]
  BY [[    if (!std::filesystem::exists(fileAt(file))) {]]
  CAUGHT_BY restore.existence-is-the-hosts)

add_component_mutant(restore-joins-by-itself
  SOURCE ResultCache.cpp
  REPLACE [[PathUtil::join(Path(mediaCache), Path("/analysis/result.json"))]]
  BY [[Path(std::string(mediaCache) + "/analysis/result.json")]]
  CAUGHT_BY restore.path-is-joined-by-host)
