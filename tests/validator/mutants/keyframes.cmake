# Faults in giving keyframes to scenes.

add_component_mutant(keyframes-without-begin
  SOURCE SceneMeasures.cpp
  REPLACE [[position < scene.begin]]
  BY [[position <= scene.begin]]
  CAUGHT_BY keyframes.at-begin-is-in keyframes.at-end-goes-to-next)

add_component_mutant(keyframes-with-end
  SOURCE SceneMeasures.cpp
  REPLACE [[position >= scene.end]]
  BY [[position > scene.end]]
  CAUGHT_BY keyframes.at-end-is-out keyframes.at-end-goes-to-next
    keyframes.in-empty-scene-are-none)

add_component_mutant(keyframes-of-gaps
  SOURCE ResultIntake.cpp
  REPLACE [[        if (place == Place::before) continue;
]]
  BY [[]]
  CAUGHT_BY keyframes.in-a-gap-are-dropped keyframes.before-first-scene-are-dropped
    keyframes.are-not-sorted)

add_component_mutant(keyframes-walked-anew
  SOURCE ResultIntake.cpp
  REPLACE [[        if (!found) found = resultsOf]]
  BY [[        cursor = 0;
        if (!found) found = resultsOf]]
  CAUGHT_BY keyframes.belong-to-one-scene-only)

add_component_mutant(keyframes-behind-passed-over
  SOURCE ResultIntake.cpp
  REPLACE [[if (place == Place::behind) break;]]
  BY [[if (place == Place::behind) continue;]]
  CAUGHT_BY keyframes.at-end-goes-to-next)

add_component_mutant(keyframes-rest-for-last-scene
  SOURCE ResultIntake.cpp
  REPLACE [[if (place == Place::behind) break;]]
  BY [[if (place == Place::behind && scence + 1 < scenceRanges.size()) break;]]
  CAUGHT_BY keyframes.behind-last-scene-are-dropped)

add_component_mutant(keyframes-in-reverse
  SOURCE ResultIntake.cpp
  REPLACE [[keyFrames.push_back({static_cast<std::int32_t>(scence), 0.0, *position});]]
  BY [[keyFrames.insert(keyFrames.begin(), {static_cast<std::int32_t>(scence), 0.0, *position});]]
  CAUGHT_BY keyframes.of-a-scene-keep-their-order)

add_component_mutant(keyframes-handed-only-if-any
  SOURCE TaskLaunch.cpp
  REPLACE [[return combined(status, task.setKeyFramePositions(positions.get()));]]
  BY [[return positions->count() == 0 ? status : combined(status, task.setKeyFramePositions(positions.get()));]]
  CAUGHT_BY keyframes.none-are-handed-as-empty-list)

add_component_mutant(keyframes-asked-for-too-often
  SOURCE ResultIntake.cpp
  REPLACE [[if (!found) found = resultsOf]]
  BY [[for (int i = 0; i < 2; ++i) found = resultsOf]]
  CAUGHT_BY keyframes.are-asked-for-once-per-scene-at-most)

add_component_mutant(keyframes-asked-for-with-first-scene-only
  SOURCE ResultIntake.cpp
  REPLACE [[if (!found) found = resultsOf]]
  BY [[if (scence == 0) found = resultsOf]]
  CAUGHT_BY keyframes.missing-list-costs-one-scene)

add_component_mutant(keyframes-asked-for-without-scenes
  SOURCE ResultIntake.cpp
  REPLACE [[    std::int64_t cursor = 0;
]]
  BY [[    std::int64_t cursor = 0;
    found = resultsOf(*task, analysisTypeKeyFrame);
]]
  CAUGHT_BY keyframes.need-scenes)

add_component_mutant(keyframes-dropped-without-task
  SOURCE ResultIntake.cpp
  REPLACE [[    if (task == nullptr) return statusFailed;
    keyFramesOfScences.clear();]]
  BY [[    keyFramesOfScences.clear();
    if (task == nullptr) return statusFailed;]]
  CAUGHT_BY keyframes.stay-where-task-is-missing)

add_component_mutant(keyframes-before-scenes
  SOURCE ResultIntake.cpp
  REPLACE [[    Status status = scenceDetectFinished(task);
    if (keyFrameDetectFinished(task) == statusFailed) status = statusFailed;]]
  BY [[    Status status = keyFrameDetectFinished(task);
    if (scenceDetectFinished(task) == statusFailed) status = statusFailed;]]
  CAUGHT_BY keyframes.come-with-scenes-in-kind-6 logs.scenes-with-keyframes
    logs.finishes-of-all-kinds)
