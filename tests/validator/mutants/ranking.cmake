# Faults in choosing and ordering the records of a video.

add_component_mutant(ranking-lowest
  SOURCE Ranking.cpp
  REPLACE [[std::max_element]]
  BY [[std::min_element]]
  CAUGHT_BY ranking.best-keyframe-of-scene ranking.either-of-equals)

add_component_mutant(ranking-by-score
  SOURCE Ranking.cpp
  REPLACE [[return left.pos < right.pos;]]
  BY [[return left.score > right.score;]]
  CAUGHT_BY ranking.records-ascend-by-position ranking.order-is-not-that-of-scores)

add_component_mutant(ranking-ends-at-best-keyframe
  SOURCE AutoTrim.cpp
  REPLACE [[result->end = scenceRanges[scence].end;]]
  BY [[result->end = best.pos;]]
  CAUGHT_BY ranking.one-record-per-scene)

add_component_mutant(ranking-empty-scenes-too
  SOURCE Ranking.cpp
  REPLACE [[if (keyFrames.empty()) continue;]]
  BY [[if (keyFrames.empty()) keyFrames.push_back({static_cast<std::int32_t>(scene), 0.0, 0});]]
  CAUGHT_BY ranking.scene-without-keyframes-has-none ranking.video-without-keyframes-has-none
    cachewrite.no-records-is-empty-array)

add_component_mutant(ranking-single-task-too
  SOURCE RunDriver.cpp
  REPLACE [[currentTaskIndex > 0 && currentTaskIndex]]
  BY [[currentTaskIndex]]
  CAUGHT_BY ranking.single-task-is-not-ranked cachewrite.single-task-writes-none)

add_component_mutant(ranking-behind-every-task
  SOURCE RunDriver.cpp
  REPLACE [[currentTaskIndex > 0 && currentTaskIndex == lastTaskIndex()]]
  BY [[currentTaskIndex > 0]]
  CAUGHT_BY ranking.comes-behind-last-task)

add_component_mutant(ranking-keyframes-dropped-by-scenes
  SOURCE ResultIntake.cpp
  REPLACE [[        scenceRanges.clear();]]
  BY [[        scenceRanges.clear();
        keyFramesOfScences.clear();]]
  CAUGHT_BY ranking.keyframes-before-scenes-meet-earlier-scenes)
