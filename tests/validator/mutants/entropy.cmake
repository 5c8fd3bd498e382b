# Faults in the entropy score.

add_component_mutant(entropy-divided
  SOURCE EntropyScore.cpp
  REPLACE [[(entropyBits * partOfTheHighest) * weight]]
  BY [[entropyBits / (1.0 / (partOfTheHighest * weight))]]
  CAUGHT_BY entropy.multiplies)

add_component_mutant(entropy-worth-more
  SOURCE EntropyScore.cpp
  REPLACE [[weight = 0.1]]
  BY [[weight = 0.11]]
  CAUGHT_BY entropy.of-8-adds-a-tenth)

add_component_mutant(entropy-clamped
  SOURCE EntropyScore.cpp
  REPLACE [[    return (]]
  BY [[    if (entropyBits < 0.0) return 0.0;
    if (entropyBits > 8.0) return weight;
    return (]]
  CAUGHT_BY entropy.is-not-clamped entropy.multiplies)

add_component_mutant(entropy-and-faces-added-in-parts
  SOURCE PictureIntake.cpp
  REPLACE [[            found, keyFrames, [&](KeyFrameScore& keyFrame, const FaceDetectFrame& frame) {
                const double score = faceScoreOfFrame(frame);]]
  BY [[            found, keyFrames, [&](KeyFrameScore& keyFrame, const FaceDetectFrame& frame) {
                keyFrame.score += faceScoreOfFrame(frame) * 0.9;
                const double score = faceScoreOfFrame(frame) * 0.1;]]
  CAUGHT_BY entropy.is-added-in-order-of-tasks)

add_component_mutant(entropy-logged-with-keyframe
  SOURCE PictureIntake.cpp
  REPLACE [[sample.pos]]
  BY [[keyFrame.pos]]
  CAUGHT_BY entropy.log-has-sample-position)

add_component_mutant(entropy-not-asked-for-empty-scenes
  SOURCE PictureIntake.cpp
  REPLACE [[        const Ref<IKORVoidPtrList> found = resultsOf(*task, analysisTypeEntropy);]]
  BY [[        if (keyFrames.empty()) continue;
        const Ref<IKORVoidPtrList> found = resultsOf(*task, analysisTypeEntropy);]]
  CAUGHT_BY entropy.is-asked-for-once-per-scene)

add_component_mutant(entropy-asked-for-without-scenes
  SOURCE PictureIntake.cpp
  REPLACE [[    logLine(function, "entropy score result: {");]]
  BY [[    const Ref<IKORVoidPtrList> all = resultsOf(*task, analysisTypeEntropy);
    logLine(function, "entropy score result: {");]]
  CAUGHT_BY entropy.needs-scenes entropy.is-asked-for-once-per-scene)

add_component_mutant(entropy-before-faces
  SOURCE PictureIntake.cpp
  REPLACE [[    Status status = faceDetectFinished(task);
    if (!isPhotoMaterial(currentMaterial()) && entropyCalculateFinished(task) == statusFailed) {
        status = statusFailed;
    }]]
  BY [[    Status status = statusOk;
    if (!isPhotoMaterial(currentMaterial())) status = entropyCalculateFinished(task);
    if (faceDetectFinished(task) == statusFailed) status = statusFailed;]]
  CAUGHT_BY entropy.comes-behind-faces-in-kind-7 logs.finishes-of-all-kinds)

add_component_mutant(entropy-of-photo
  SOURCE PictureIntake.cpp
  REPLACE [[!isPhotoMaterial(currentMaterial()) && entropy]]
  BY [[entropy]]
  CAUGHT_BY entropy.of-photo-is-not-read logs.photo-has-no-entropy-line)
