# Faults of what the library needs and exports.

add_component_mutant(absent-service
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    component->addRef();
    return component;]]
  BY [[    void absentService();
    absentService();
    component->addRef();
    return component;]]
  CAUGHT_BY library.loads)

add_component_mutant(factory-by-another-name
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[KOR::IKorMaterialAnalysis* createMaterialAnalysis() {]]
  BY [[KOR::IKorMaterialAnalysis* createAnalysis() {]]
  CAUGHT_BY library.exports-factory library.loads-again)

add_component_mutant(key-of-scenes-put-right
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[= "minScenceDuration";]]
  BY [[= "minSceneDuration";]]
  CAUGHT_BY library.key-min-scene-duration options.other-keys-fail options.keys-compared-by-letters)

add_component_mutant(key-of-threshold-put-right
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[= "scenceDetectionThreshold";]]
  BY [[= "sceneDetectionThreshold";]]
  CAUGHT_BY library.key-threshold options.other-keys-fail options.keys-compared-by-letters)

add_component_mutant(key-of-videos-put-right
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[= "minNeedAnalysisDuartion";]]
  BY [[= "minNeedAnalysisDuration";]]
  CAUGHT_BY library.key-min-need-analysis options.other-keys-fail options.keys-compared-by-letters)

add_component_mutant(key-of-photos-in-capitals
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[= "photoNeedAnalysis";]]
  BY [[= "PhotoNeedAnalysis";]]
  CAUGHT_BY library.key-photo options.keys-heed-case options.keys-compared-by-letters)
