# Faults in taking in scenes.

add_component_mutant(scenes-longer-than-minimum
  SOURCE SceneMeasures.cpp
  REPLACE [[/ ticksPerSecond >= minSeconds]]
  BY [[/ ticksPerSecond > minSeconds]]
  CAUGHT_BY scenes.shortest-allowed-is-kept scenes.zero-length-is-kept-at-minimum-0
    scenes.slightly-reversed-is-kept-at-minimum-0 scenes.negative-minimum-counts-as-it-is)

add_component_mutant(scenes-rounded-to-seconds
  SOURCE SceneMeasures.cpp
  REPLACE [[return lengthOf(scene) / ticksPerSecond]]
  BY [[return (lengthOf(scene) + ticksPerSecond / 2) / ticksPerSecond]]
  CAUGHT_BY scenes.one-tick-too-short-is-dropped scenes.reversed-by-a-second-is-dropped
    scenes.negative-minimum-counts-as-it-is)

add_component_mutant(scenes-minimum-of-the-start
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        minScenceDuration = payloadOf]]
  BY [[        if (currentTaskIndex < 0) minScenceDuration = payloadOf]]
  CAUGHT_BY scenes.minimum-is-read-at-intake)

add_component_mutant(scenes-without-fallback
  SOURCE ResultIntake.cpp
  REPLACE [[            scenceRanges.push_back({0, media == nullptr ? 0 : media->getDuration()});]]
  BY [[            static_cast<void>(media);]]
  CAUGHT_BY scenes.none-found-is-one-scene scenes.all-too-short-is-one-scene
    scenes.one-scene-ends-at-own-duration scenes.no-list-is-one-scene)

add_component_mutant(scenes-fallback-of-computed-duration
  SOURCE ResultIntake.cpp
  REPLACE [[media == nullptr ? 0 : media->getDuration()]]
  BY [[mediaDuration(media)]]
  CAUGHT_BY scenes.one-scene-ends-at-own-duration)

add_component_mutant(scenes-from-null-list
  SOURCE ResultIntake.cpp
  REPLACE [[found && i < found->count()]]
  BY [[i < found->count()]]
  CAUGHT_BY scenes.no-list-is-one-scene)

add_component_mutant(scenes-counted-once
  SOURCE ResultIntake.cpp
  REPLACE [[for (std::int64_t i = 0; found && i < found->count(); ++i) {]]
  BY [[for (std::int64_t i = 0, n = found ? found->count() : 0; i < n; ++i) {]]
  CAUGHT_BY scenes.count-is-asked-anew)

add_component_mutant(scenes-in-reverse
  SOURCE ResultIntake.cpp
  REPLACE [[scenceRanges.push_back(scence);]]
  BY [[scenceRanges.insert(scenceRanges.begin(), scence);]]
  CAUGHT_BY scenes.order-is-kept)

add_component_mutant(scenes-kept-from-before
  SOURCE ResultIntake.cpp
  REPLACE [[        scenceRanges.clear();
]]
  BY [[]]
  CAUGHT_BY scenes.of-video-before-are-forgotten)

add_component_mutant(scenes-dropped-without-task
  SOURCE ResultIntake.cpp
  REPLACE [[    if (task != nullptr) {
        scenceRanges.clear();]]
  BY [[    scenceRanges.clear();
    if (task != nullptr) {]]
  CAUGHT_BY scenes.stay-where-task-is-missing)
