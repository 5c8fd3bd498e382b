# Faults in the duration score.

add_component_mutant(duration-without-end
  SOURCE SceneMeasures.cpp
  REPLACE [[static_cast<std::uint64_t>(lengthOf(scene)) + 1]]
  BY [[static_cast<std::uint64_t>(lengthOf(scene))]]
  CAUGHT_BY duration.counts-the-end duration.multiplies-before-it-divides
    duration.of-whole-video-is-above-0.3)

add_component_mutant(duration-divided-first
  SOURCE SceneMeasures.cpp
  REPLACE [[length * weight / static_cast<double>(materialDuration)]]
  BY [[length / static_cast<double>(materialDuration) * weight]]
  CAUGHT_BY duration.multiplies-before-it-divides)

add_component_mutant(duration-limited
  SOURCE SceneMeasures.cpp
  REPLACE [[    return length * weight / static_cast<double>(materialDuration);]]
  BY [[    const double score = length * weight / static_cast<double>(materialDuration);
    return score > weight ? weight : score;]]
  CAUGHT_BY duration.of-whole-video-is-above-0.3 duration.has-no-limit)

add_component_mutant(duration-of-first-keyframe-only
  SOURCE ResultIntake.cpp
  REPLACE [[            for (KeyFrameScore& keyFrame : keyFrames)
                keyFrame.score += score;]]
  BY [[            keyFrames.front().score += score;]]
  CAUGHT_BY duration.is-the-same-for-all-of-a-scene)

add_component_mutant(duration-logged-from-1
  SOURCE ResultIntake.cpp
  REPLACE [["[", scence, ":"]]
  BY [["[", scence + 1, ":"]]
  CAUGHT_BY duration.log-has-scene-and-score duration.log-passes-over-empty-scenes)

add_component_mutant(duration-logged-with-six-digits
  SOURCE ResultIntake.cpp
  REPLACE [[fixedText(keyFrames.front().score)]]
  BY [[keyFrames.front().score]]
  CAUGHT_BY duration.log-has-scene-and-score duration.log-is-in-fixed-notation)

add_component_mutant(duration-logged-for-empty-scenes
  SOURCE ResultIntake.cpp
  REPLACE [[        if (!keyFrames.empty()) {]]
  BY [[        if (keyFrames.empty()) logLine(function, "[", scence, ":0.000000]");
        if (!keyFrames.empty()) {]]
  CAUGHT_BY duration.log-passes-over-empty-scenes duration.log-without-keyframes-is-empty)
