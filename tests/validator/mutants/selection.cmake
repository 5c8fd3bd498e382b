# Faults in which material gets which task, and in default records.

add_component_mutant(limit-is-analysed
  SOURCE Selection.cpp
  REPLACE [[duration <= minSeconds]]
  BY [[duration < minSeconds]]
  CAUGHT_BY selection.analyses-videos-above-two-seconds selection.analyses-videos-above-parameter)

add_component_mutant(limit-in-32-bits
  SOURCE Selection.cpp
  REPLACE [[minSeconds * ticksPerSecond]]
  BY [[static_cast<std::int32_t>(minSeconds * ticksPerSecond)]]
  CAUGHT_BY selection.computes-limit-in-64-bits)

add_component_mutant(negative-limit-is-none
  SOURCE Selection.cpp
  REPLACE [[    return duration <= minSeconds]]
  BY [[    return duration <= 0 || duration <= minSeconds]]
  CAUGHT_BY selection.analyses-all-above-negative-limit)

add_component_mutant(limit-fixed-at-start
  SOURCE RunDriver.cpp
  REPLACE [[isTooShortToAnalyse(mediaDuration(media), minNeedAnalysisDuartion)]]
  BY [[isTooShortToAnalyse(mediaDuration(media),
                                [this] {
                                    static std::int64_t fixed = 0;
                                    if (currentMaterialIndex == 0) fixed = minNeedAnalysisDuartion;
                                    return fixed;
                                }())]]
  CAUGHT_BY selection.reads-limit-at-each-material)

add_component_mutant(sequences-are-photos
  SOURCE MediaQueries.cpp
  REPLACE [[ &&
                                media->getMediaType() != mediaTypeSequence);]]
  BY [[);]]
  CAUGHT_BY selection.takes-three-codes-as-videos)

add_component_mutant(codes-are-bits
  SOURCE MediaQueries.cpp
  REPLACE [[(media->getMediaType() != mediaTypeVideo &&]]
  BY [[((media->getMediaType() & mediaTypeVideo) == 0 &&]]
  CAUGHT_BY selection.takes-other-codes-as-photos)

add_component_mutant(photos-always-analysed
  SOURCE RunDriver.cpp
  REPLACE [[photoNeedAnalysis == 0 ? noTask : ]]
  BY [[]]
  CAUGHT_BY selection.analyses-no-photo-by-default)

add_component_mutant(photos-analysed-for-1-only
  SOURCE RunDriver.cpp
  REPLACE [[photoNeedAnalysis == 0 ?]]
  BY [[photoNeedAnalysis != 1 ?]]
  CAUGHT_BY selection.analyses-photos-for-any-but-0)

add_component_mutant(photo-parameter-fixed-at-first
  SOURCE RunDriver.cpp
  REPLACE [[    const std::int32_t index = photoNeedAnalysis == 0]]
  BY [[    static std::int32_t fixed = 0;
    if (currentMaterialIndex == 0) fixed = photoNeedAnalysis;
    const std::int32_t index = fixed == 0]]
  CAUGHT_BY selection.reads-photo-parameter-at-each-material)

add_component_mutant(kind-7-before-kind-1
  SOURCE Selection.cpp
  REPLACE [[{analysisKindFace, analysisKindFaceAndEntropy}]]
  BY [[{analysisKindFaceAndEntropy, analysisKindFace}]]
  CAUGHT_BY selection.prefers-face-kind-on-photo)

add_component_mutant(kind-7-not-for-photos
  SOURCE Selection.cpp
  REPLACE [[{analysisKindFace, analysisKindFaceAndEntropy}]]
  BY [[{analysisKindFace}]]
  CAUGHT_BY selection.starts-kind-7-on-photo-without-kind-1)

add_component_mutant(last-face-kind-for-photos
  SOURCE Selection.cpp
  REPLACE [[            return static_cast<std::int32_t>(found - analysisKinds.begin());]]
  BY [[            const auto last = std::find(analysisKinds.rbegin(), analysisKinds.rend(), kind);
            return static_cast<std::int32_t>(analysisKinds.rend() - last) - 1;]]
  CAUGHT_BY selection.takes-first-face-kind-on-photo)

add_component_mutant(photos-run-every-kind
  SOURCE RunDriver.cpp
  REPLACE [[    currentTaskIndex = index;
    return index != 0;]]
  BY [[    currentTaskIndex = 0;
    return index != 0;]]
  CAUGHT_BY selection.starts-face-task-on-photo)

add_component_mutant(photos-run-one-kind
  SOURCE RunDriver.cpp
  REPLACE [[    } else if (currentTaskIndex == lastTaskIndex()) {]]
  BY [[    } else if (currentTaskIndex == lastTaskIndex() || isPhotoMaterial(currentMaterial())) {]]
  CAUGHT_BY selection.runs-kinds-behind-face-kind-on-photo)

add_component_mutant(photos-without-face-kind-run-last
  SOURCE Selection.cpp
  REPLACE [[    return noTask;]]
  BY [[    return static_cast<std::int32_t>(analysisKinds.size()) - 1;]]
  CAUGHT_BY selection.starts-nothing-on-photo-without-face-kind)

add_component_mutant(photos-are-collected
  SOURCE RunDriver.cpp
  REPLACE [[    if (isPhotoMaterial(currentMaterial())) return status;
]]
  BY [[]]
  CAUGHT_BY selection.collects-nothing-of-photos)

add_component_mutant(first-face-task-is-chosen
  SOURCE RunDriver.cpp
  REPLACE [[    return index != 0;]]
  BY [[    return true;]]
  CAUGHT_BY selection.examines-photo-over-and-over)

add_component_mutant(default-score-0
  SOURCE AutoTrim.cpp
  REPLACE [[    result->score = 1.0;]]
  BY [[    result->score = 0.0;]]
  CAUGHT_BY selection.covers-short-videos)

add_component_mutant(middle-rounded-down
  SOURCE AutoTrim.cpp
  REPLACE [[static_cast<std::int64_t>(static_cast<double>(result->end) * 0.5)]]
  BY [[(result->end >> 1)]]
  CAUGHT_BY selection.truncates-middle selection.halves-as-double)

add_component_mutant(photo-length-0-is-a-length
  SOURCE MediaQueries.cpp
  REPLACE [[ownLengthOf(media) <= 0)]]
  BY [[ownLengthOf(media) < 0)]]
  CAUGHT_BY selection.gives-photos-one-tick selection.gives-sourceless-photos-one-tick)

add_component_mutant(photos-always-one-tick
  SOURCE MediaQueries.cpp
  REPLACE [[    if (isPhotoMaterial(media) && ownLengthOf(media) <= 0) return 1;]]
  BY [[    if (isPhotoMaterial(media)) return 1;]]
  CAUGHT_BY selection.gives-photos-their-duration)

add_component_mutant(media-length-counts-for-videos
  SOURCE MediaQueries.cpp
  REPLACE [[    if (isPhotoMaterial(media) && ownLengthOf(media) <= 0) return 1;]]
  BY [[    if (ownLengthOf(media) <= 0) return 1;]]
  CAUGHT_BY selection.ignores-media-length-of-videos)

add_component_mutant(defaults-are-written
  SOURCE AutoTrim.cpp
  REPLACE [[    result->score = 1.0;]]
  BY [[    result->score = 1.0;
    saveMaterialAnalysisResult(media, {result.get()});]]
  CAUGHT_BY selection.keeps-cache-out-of-defaults)

add_component_mutant(defaults-come-first
  SOURCE AutoTrim.cpp
  REPLACE [[    result->score = 1.0;
    analysisResults.push_back(std::move(result));]]
  BY [[    result->score = 1.0;
    analysisResults.insert(analysisResults.begin(), std::move(result));]]
  CAUGHT_BY selection.orders-records-by-material)

add_component_mutant(photos-without-record
  SOURCE RunDriver.cpp
  REPLACE [[    addDefaultResult(1);
]]
  BY [[]]
  CAUGHT_BY selection.takes-other-codes-as-photos selection.analyses-no-photo-by-default)

add_component_mutant(photo-takes-later-face-kind
  SOURCE Selection.cpp
  REPLACE [[        const auto found = std::find(analysisKinds.begin(), analysisKinds.end(), kind);]]
  BY [[        auto found = std::find(analysisKinds.begin(), analysisKinds.end(), kind);
        if (found != analysisKinds.end() && found == analysisKinds.begin()) {
            const auto later = std::find(found + 1, analysisKinds.end(), kind);
            if (later != analysisKinds.end()) found = later;
        }]]
  CAUGHT_BY selection.looks-for-no-later-face-kind)

add_component_mutant(photo-takes-kind-7-instead
  SOURCE Selection.cpp
  REPLACE [[        const auto found = std::find(analysisKinds.begin(), analysisKinds.end(), kind);]]
  BY [[        const auto found = std::find(analysisKinds.begin(), analysisKinds.end(), kind);
        if (kind == analysisKindFace && found == analysisKinds.begin() &&
            std::find(found, analysisKinds.end(), analysisKindFaceAndEntropy) !=
                analysisKinds.end())
            continue;]]
  CAUGHT_BY selection.looks-for-no-kind-7-instead)

add_component_mutant(photo-passes-over-kind-7
  SOURCE Selection.cpp
  REPLACE [[        const auto found = std::find(analysisKinds.begin(), analysisKinds.end(), kind);]]
  BY [[        const auto found = std::find(analysisKinds.begin(), analysisKinds.end(), kind);
        if (kind == analysisKindFaceAndEntropy && found == analysisKinds.begin()) continue;]]
  CAUGHT_BY selection.examines-photo-for-kind-7-too)
