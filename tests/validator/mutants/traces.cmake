# Faults that show in whole runs over videos.

add_component_mutant(traces-entropy-before-faces
  SOURCE PictureIntake.cpp
  REPLACE [[    Status status = faceDetectFinished(task);
    if (!isPhotoMaterial(currentMaterial()) && entropyCalculateFinished(task) == statusFailed) {
        status = statusFailed;
    }]]
  BY [[    Status status = statusOk;
    if (!isPhotoMaterial(currentMaterial())) status = entropyCalculateFinished(task);
    if (faceDetectFinished(task) == statusFailed) status = statusFailed;]]
  CAUGHT_BY traces.of-combined-kinds mixtures.of-photos-and-video)

add_component_mutant(mode-set-before-priority
  SOURCE TaskLaunch.cpp
  REPLACE [[    task.setPriority(taskPriority);
    task.setParameterMode(flag);]]
  BY [[    task.setParameterMode(flag);
    task.setPriority(taskPriority);]]
  CAUGHT_BY traces.of-single-kinds traces.of-combined-kinds traces.of-two-videos
    mixtures.of-photos-with-faces mixtures.of-short-videos)

add_component_mutant(restored-scores-are-1
  SOURCE ResultCache.cpp
  REPLACE [[        record->media = &media;]]
  BY [[        record->media = &media;
        record->score = 1.0;]]
  CAUGHT_BY traces.of-restored-video run.takes-restored-videos-as-done)

add_component_mutant(entropy-weighs-twice
  SOURCE PictureIntake.cpp
  REPLACE [[                keyFrame.score += score;
            });
    }
    logLine(function, "}\n");
    return statusOk;]]
  BY [[                keyFrame.score += score + score;
            });
    }
    logLine(function, "}\n");
    return statusOk;]]
  CAUGHT_BY traces.file-of-single-kinds traces.of-single-kinds)
