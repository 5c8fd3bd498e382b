# Faults of preparing and starting tasks.

add_component_mutant(face-with-mode-1
  SOURCE TaskLaunch.cpp
  REPLACE [[    Status status = prepareTask(*task, parameterModeDefault);
    IDmSourceMedia*]]
  BY [[    Status status = prepareTask(*task, parameterModeExplicit);
    IDmSourceMedia*]]
  CAUGHT_BY launch.face launch.face-of-photo launch.face-of-unseekable-source)

add_component_mutant(blur-without-positions
  SOURCE TaskLaunch.cpp
  REPLACE [[    status = combined(status, handKeyFramePositions(*task));
    return launch(*task, status, "KOR::KorMaterialAnalysis::startBlurDetect",]]
  BY [[    return launch(*task, status, "KOR::KorMaterialAnalysis::startBlurDetect",]]
  CAUGHT_BY launch.blur launch.other-kinds-of-unseekable-source launch.empty-positions)

add_component_mutant(keyframes-with-block
  SOURCE TaskLaunch.cpp
  REPLACE [[    status = combined(status, handScenceRanges(*task));]]
  BY [[    status = combined(status, handScenceRanges(*task));
    task->setParameterBlock(analysisTypeKeyFrame, &keyFrameParameters);]]
  CAUGHT_BY launch.keyframes launch.empty-scenes)

add_component_mutant(another-sensitivity
  SOURCE TaskLaunch.cpp
  REPLACE [[parameters{1.0, scenceDetectionThreshold, 0}]]
  BY [[parameters{0.5, scenceDetectionThreshold, 0}]]
  CAUGHT_BY launch.scenes launch.scenes-and-keyframes)

add_component_mutant(entropy-with-mode-1
  SOURCE TaskLaunch.cpp
  REPLACE [[    Status status = prepareTask(*task, parameterModeDefault);
    status = combined(status, handKeyFramePositions(*task));
    return launch(*task, status, "KOR::KorMaterialAnalysis::startEntropyCalculate",]]
  BY [[    Status status = prepareTask(*task, parameterModeExplicit);
    status = combined(status, handKeyFramePositions(*task));
    return launch(*task, status, "KOR::KorMaterialAnalysis::startEntropyCalculate",]]
  CAUGHT_BY launch.entropy)

add_component_mutant(another-keyframe-block
  SOURCE TaskLaunch.cpp
  REPLACE [[keyFrameParameters{6, 4, 0, 4, 2, 2}]]
  BY [[keyFrameParameters{6, 4, 0, 4, 2, 3}]]
  CAUGHT_BY launch.scenes-and-keyframes)

add_component_mutant(line-of-faces-put-right
  SOURCE TaskLaunch.cpp
  REPLACE [[----Start Face detect and Entropy Value]]
  BY [[----Start Face Detect and Entropy Value]]
  CAUGHT_BY launch.face-and-entropy launch.face-and-entropy-of-photo)

add_component_mutant(line-of-keyframes-put-right
  SOURCE TaskLaunch.cpp
  REPLACE [[keyframe extrackt:]]
  BY [[keyframe extract:]]
  CAUGHT_BY launch.scenes-and-keyframes)

add_component_mutant(photo-gets-positions
  SOURCE TaskLaunch.cpp
  REPLACE [[    if (isPhotoMaterial(currentMaterial())) return statusOk;
    const auto positions]]
  BY [[    const auto positions]]
  CAUGHT_BY launch.face-of-photo launch.face-and-entropy-of-photo launch.later-kinds-of-photo)

add_component_mutant(photo-gets-scenes
  SOURCE TaskLaunch.cpp
  REPLACE [[    if (isPhotoMaterial(currentMaterial())) return statusOk;
    std::vector<std::unique_ptr<TickRange>> pairs;]]
  BY [[    std::vector<std::unique_ptr<TickRange>> pairs;]]
  CAUGHT_BY launch.later-kinds-of-photo)

add_component_mutant(unseekable-source-gets-positions
  SOURCE TaskLaunch.cpp
  REPLACE [[    if (source == nullptr || source->getSourceType() != sourceTypeUnseekable) {]]
  BY [[    if (source != nullptr) {]]
  CAUGHT_BY launch.face-of-unseekable-source)

add_component_mutant(source-type-is-a-set
  SOURCE TaskLaunch.cpp
  REPLACE [[    if (source == nullptr || source->getSourceType() != sourceTypeUnseekable) {]]
  BY [[    if (source == nullptr || (source->getSourceType() & sourceTypeUnseekable) == 0) {]]
  CAUGHT_BY launch.face-of-other-source-types)

add_component_mutant(unseekable-source-gets-none
  SOURCE TaskLaunch.cpp
  REPLACE [[    if (isPhotoMaterial(currentMaterial())) return statusOk;
    const auto positions]]
  BY [[    if (isPhotoMaterial(currentMaterial())) return statusOk;
    IDmSourceMedia* const media = sourceMediaOf(currentMaterial());
    if (media != nullptr && media->getSourceType() == sourceTypeUnseekable) return statusOk;
    const auto positions]]
  CAUGHT_BY launch.other-kinds-of-unseekable-source)

add_component_mutant(no-empty-positions
  SOURCE TaskLaunch.cpp
  REPLACE [[    return combined(status, task.setKeyFramePositions(positions.get()));]]
  BY [[    if (positions->count() == 0) return status;
    return combined(status, task.setKeyFramePositions(positions.get()));]]
  CAUGHT_BY launch.empty-positions)

add_component_mutant(no-empty-scenes
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status handed = task.setSceneRanges(ranges.get());]]
  BY [[    if (pairs.empty()) return statusOk;
    const Status handed = task.setSceneRanges(ranges.get());]]
  CAUGHT_BY launch.empty-scenes)

add_component_mutant(scenes-of-32-bits
  SOURCE TaskLaunch.cpp
  REPLACE [[TickRange{scence.begin, scence.end}]]
  BY [[TickRange{scence.begin, static_cast<std::int32_t>(scence.end)}]]
  CAUGHT_BY launch.wide-scenes)

add_component_mutant(positions-of-32-bits
  SOURCE TaskLaunch.cpp
  REPLACE [[positions->append(keyFrame.pos)]]
  BY [[positions->append(static_cast<std::int32_t>(keyFrame.pos))]]
  CAUGHT_BY launch.wide-positions)

add_component_mutant(first-positions-only
  SOURCE TaskLaunch.cpp
  REPLACE [[            status = combined(status, positions->append(keyFrame.pos));]]
  BY [[            status = combined(status, positions->append(keyFrame.pos));
            break;]]
  CAUGHT_BY launch.face launch.blur launch.entropy launch.face-and-entropy)

add_component_mutant(combined-with-fixed-threshold
  SOURCE TaskLaunch.cpp
  REPLACE [[        status = combined(status, handScenceParameters(*task));
        status =]]
  BY [[        const SceneParameters fixed{1.0, 3.0, 0};
        status = combined(status, task->setParameterBlock(analysisTypeScene, &fixed));
        status =]]
  CAUGHT_BY launch.threshold-in-both-blocks)

add_component_mutant(first-source-for-all
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status status = task.setSource(sourceOf(currentMaterial()), 0, 0);]]
  BY [[    const Status status = task.setSource(sourceOf(materials.front().get()), 0, 0);]]
  CAUGHT_BY launch.same-task-again)

add_component_mutant(line-counts-from-1
  SOURCE TaskLaunch.cpp
  REPLACE [[    logLine(source, text, mark.materialIndex(), "\n");]]
  BY [[    logLine(source, text, mark.materialIndex() + 1, "\n");]]
  CAUGHT_BY launch.line-names-material launch.scenes)

add_component_mutant(line-of-another-function
  SOURCE TaskLaunch.cpp
  REPLACE [[    return launch(*task, status, "KOR::KorMaterialAnalysis::startBlurDetect",]]
  BY [[    return launch(*task, status, "KOR::KorMaterialAnalysis::startBlur",]]
  CAUGHT_BY launch.lines-are-framed launch.blur)

add_component_mutant(line-of-another-unit
  SOURCE LogLine.cpp
  REPLACE [["modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis"]]
  BY [["modules/BusinessLayer/MaterialAnalysis/TaskLaunch"]]
  CAUGHT_BY launch.lines-are-framed)

add_component_mutant(positions-are-kept
  SOURCE TaskLaunch.cpp
  REPLACE [[Ref<IKORLonglongList>::adopt(createKORLonglongList())]]
  BY [[Ref<IKORLonglongList>::share(createKORLonglongList())]]
  CAUGHT_BY launch.lists-are-released counting.end-gives-everything-back)

add_component_mutant(scenes-are-kept
  SOURCE TaskLaunch.cpp
  REPLACE [[Ref<IKORVoidPtrList>::adopt(createKORVoidPtrList())]]
  BY [[Ref<IKORVoidPtrList>::share(createKORVoidPtrList())]]
  CAUGHT_BY launch.lists-are-released counting.end-gives-everything-back)

add_component_mutant(line-before-start
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status started = task.start();]]
  BY [[    logLine(source, text, mark.materialIndex(), "\n");
    const Status started = task.start();]]
  CAUGHT_BY
    launch.face
    launch.blur
    launch.keyframes
    launch.scenes
    launch.entropy
    launch.scenes-and-keyframes
    launch.face-and-entropy)

add_component_mutant(nothing-is-launched
  SOURCE RunDriver.cpp
  REPLACE [[    if (cancelled.load() != 0) return statusFailed;
    IBsMediaAnalysisTask* const task = currentTask();]]
  BY [[    if (cancelled.load() != 0 || !tasks.empty()) return statusFailed;
    IBsMediaAnalysisTask* const task = currentTask();]]
  FAILED_BY launch.face listeners.are-told-in-order run.does-nothing-behind-its-end)
