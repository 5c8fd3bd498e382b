# Faults of the defaults, the range and the moment of parameters.

add_component_mutant(min-scene-begins-at-1
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    component->addRef();
    return component;]]
  BY [[    KOR::KorValue value{};
    value.asInt32 = 1;
    component->setAnalysisParam(KOR::analysisParamKey::minScenceDuration, &value);
    component->addRef();
    return component;]]
  CAUGHT_BY parameters.min-scene-is-2)

add_component_mutant(threshold-begins-at-2
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    component->addRef();
    return component;]]
  BY [[    KOR::KorValue value{};
    value.asReal = 2.5;
    component->setAnalysisParam(KOR::analysisParamKey::scenceDetectionThreshold, &value);
    component->addRef();
    return component;]]
  CAUGHT_BY parameters.threshold-is-3 identity.parameters-are-not-shared)

add_component_mutant(min-need-begins-at-3
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    component->addRef();
    return component;]]
  BY [[    KOR::KorValue value{};
    value.asInt32 = 3;
    component->setAnalysisParam(KOR::analysisParamKey::minNeedAnalysisDuartion, &value);
    component->addRef();
    return component;]]
  CAUGHT_BY parameters.min-need-is-2)

add_component_mutant(photo-need-begins-at-1
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    component->addRef();
    return component;]]
  BY [[    KOR::KorValue value{};
    value.asInt32 = 1;
    component->setAnalysisParam(KOR::analysisParamKey::photoNeedAnalysis, &value);
    component->addRef();
    return component;]]
  CAUGHT_BY parameters.photo-need-is-0)

add_component_mutant(min-scene-is-clamped
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        minScenceDuration = payloadOf<std::int32_t>(value);]]
  BY [[        minScenceDuration = std::max(0, payloadOf<std::int32_t>(value));]]
  CAUGHT_BY parameters.min-scene-is-kept-as-it-is parameters.min-scene-drops-scenes)

add_component_mutant(scenes-compared-by-ticks
  SOURCE SceneMeasures.cpp
  REPLACE [[    return lengthOf(scene) / ticksPerSecond >= minSeconds;]]
  BY [[    return lengthOf(scene) >= minSeconds * ticksPerSecond;]]
  CAUGHT_BY parameters.min-scene-drops-scenes)

add_component_mutant(threshold-is-clamped
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        scenceDetectionThreshold = payloadOf<double>(value);]]
  BY [[        scenceDetectionThreshold = std::max(0.01, payloadOf<double>(value));]]
  CAUGHT_BY parameters.threshold-is-kept-as-it-is parameters.threshold-is-in-file)

add_component_mutant(threshold-of-few-digits
  SOURCE ResultCacheText.cpp
  REPLACE [[    writer.Double(header.scenceDetectionThreshold);]]
  BY [[    writer.Double(static_cast<float>(header.scenceDetectionThreshold));]]
  CAUGHT_BY parameters.threshold-is-in-file)

add_component_mutant(video-at-limit-is-analysed
  SOURCE Selection.cpp
  REPLACE [[    return duration <= minSeconds * ticksPerSecond;]]
  BY [[    return duration < minSeconds * ticksPerSecond;]]
  CAUGHT_BY parameters.min-need-limits parameters.min-need-is-2)

add_component_mutant(limit-of-32-bits
  SOURCE Selection.cpp
  REPLACE [[    return duration <= minSeconds * ticksPerSecond;]]
  BY [[    return duration <= static_cast<std::int32_t>(minSeconds * ticksPerSecond);]]
  CAUGHT_BY parameters.min-need-limits)

add_component_mutant(limit-is-not-negative
  SOURCE Selection.cpp
  REPLACE [[    return duration <= minSeconds * ticksPerSecond;]]
  BY [[    return duration <= std::max<std::int64_t>(0, minSeconds) * ticksPerSecond;]]
  CAUGHT_BY parameters.min-need-may-be-negative)

add_component_mutant(photo-need-is-1
  SOURCE RunDriver.cpp
  REPLACE [[photoNeedAnalysis == 0 ? noTask]]
  BY [[photoNeedAnalysis != 1 ? noTask]]
  CAUGHT_BY parameters.photo-need-is-a-flag)

add_component_mutant(min-need-sets-min-scene
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        minNeedAnalysisDuartion = payloadOf<std::int32_t>(value);]]
  BY [[        minNeedAnalysisDuartion = payloadOf<std::int32_t>(value);
        minScenceDuration = minNeedAnalysisDuartion;]]
  CAUGHT_BY parameters.keep-apart)

add_component_mutant(clearing-forgets-threshold
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    materials.clear();
    analysisResults.clear();
    return statusOk;]]
  BY [[    materials.clear();
    analysisResults.clear();
    scenceDetectionThreshold = 3.0;
    return statusOk;]]
  CAUGHT_BY parameters.outlive-runs)

add_component_mutant(threshold-counts-once
  SOURCE TaskLaunch.cpp
  REPLACE [[    const SceneParameters parameters{1.0, scenceDetectionThreshold, 0};]]
  BY [[    static const double threshold = scenceDetectionThreshold;
    const SceneParameters parameters{1.0, threshold, 0};]]
  CAUGHT_BY parameters.threshold-counts-at-next-start parameters.threshold-is-kept-as-it-is)

add_component_mutant(min-scene-counts-once
  SOURCE ResultIntake.cpp
  REPLACE [[            if (lastsAtLeast(scence, minScenceDuration)) scenceRanges.push_back(scence);]]
  BY [[            static const std::int64_t seconds = minScenceDuration;
            if (lastsAtLeast(scence, seconds)) scenceRanges.push_back(scence);]]
  CAUGHT_BY parameters.min-scene-counts-at-next-finish parameters.min-scene-drops-scenes)

add_component_mutant(min-need-counts-once
  SOURCE RunDriver.cpp
  REPLACE [[        if (isTooShortToAnalyse(mediaDuration(media), minNeedAnalysisDuartion)) {]]
  BY [[        static const std::int64_t seconds = minNeedAnalysisDuartion;
        if (isTooShortToAnalyse(mediaDuration(media), seconds)) {]]
  CAUGHT_BY parameters.min-need-counts-at-next-material parameters.min-need-limits)

add_component_mutant(photo-need-counts-once
  SOURCE RunDriver.cpp
  REPLACE [[    const std::int32_t index = photoNeedAnalysis == 0]]
  BY [[    static const std::int32_t need = photoNeedAnalysis;
    const std::int32_t index = need == 0]]
  CAUGHT_BY parameters.photo-need-counts-at-next-material)
