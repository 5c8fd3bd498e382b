# Faults in what becomes of a run when the host fails.

add_component_mutant(missing-list-stops-intake
  SOURCE ResultIntake.cpp
  REPLACE [[        for (std::int64_t i = 0; found && i <]]
  BY [[        for (std::int64_t i = 0; i <]]
  CAUGHT_BY failure.of-one-list-ends-no-run failure.of-all-lists-ends-no-run
    failure.of-list-loses-what-it-held)

add_component_mutant(failed-preparation-starts-nothing
  SOURCE TaskLaunch.cpp
  REPLACE [[    const NestedStart mark(this, currentMaterialIndex);]]
  BY [[    if (prepared == statusFailed) return statusFailed;
    const NestedStart mark(this, currentMaterialIndex);]]
  CAUGHT_BY failure.of-operations-ends-no-run failure.of-preparation-shows-in-start
    failure.of-handed-list-starts-the-task failure.of-source-shows-in-start
    failure.of-appending-ends-no-run)

add_component_mutant(failed-preparation-is-forgotten
  SOURCE TaskLaunch.cpp
  REPLACE [[    return combined(prepared, started);]]
  BY [[    static_cast<void>(prepared);
    return started;]]
  CAUGHT_BY failure.of-preparation-shows-in-start failure.of-source-shows-in-start)

add_component_mutant(refused-start-is-forgotten
  SOURCE TaskLaunch.cpp
  REPLACE [[    return combined(prepared, started);]]
  BY [[    static_cast<void>(started);
    return prepared;]]
  CAUGHT_BY failure.of-task-start-shows-in-start)

add_component_mutant(failed-start-ends-the-run
  SOURCE RunDriver.cpp
  REPLACE [[    return next == statusFailed ? statusFailed : taken;]]
  BY [[    if (next == statusFailed) finishedAllAnalysis();
    return next == statusFailed ? statusFailed : taken;]]
  CAUGHT_BY failure.of-task-start-allows-another-run failure.of-all-tasks-stalls
    failure.of-kinds-stalls failure.of-interface-stalls failure.of-task-start-shows-in-start)

add_component_mutant(failed-intake-ends-the-run
  SOURCE RunDriver.cpp
  REPLACE [[    advanceToNextTask();
    const Status next]]
  BY [[    if (taken == statusFailed) return statusFailed;
    advanceToNextTask();
    const Status next]]
  CAUGHT_BY failure.of-interface-at-the-end-ends-no-run run.reads-nothing-of-blur)

add_component_mutant(log-is-needed
  SOURCE LogLine.cpp
  REPLACE [[    if (logger == nullptr || !logger->testSeverity]]
  BY [[    if (!logger->testSeverity]]
  CAUGHT_BY failure.of-log-changes-nothing)

add_component_mutant(severity-not-looked-at
  SOURCE LogLine.cpp
  REPLACE [[    if (logger == nullptr || !logger->testSeverity(IBsLogger::info)) return;]]
  BY [[    if (logger == nullptr) return;]]
  CAUGHT_BY failure.of-severity-opens-no-line failure.of-log-changes-nothing)

add_component_mutant(missing-directory-drops-records
  SOURCE AutoTrim.cpp
  REPLACE [[    saveMaterialAnalysisResult(media, ofMaterial);
    return]]
  BY [[    if (!saveMaterialAnalysisResult(media, ofMaterial)) analysisResults.clear();
    return]]
  CAUGHT_BY failure.of-directory-keeps-records)

add_component_mutant(undeletable-file-is-taken
  SOURCE ResultCache.cpp
  REPLACE [[        FileUtil::remove(file);
        return false;]]
  BY [[        return !FileUtil::remove(file);]]
  CAUGHT_BY failure.of-deleting-ends-no-run)

add_component_mutant(unprepared-task-not-started
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status started = task.start();]]
  BY [[    if (prepared == statusFailed) return statusFailed;
    const Status started = task.start();]]
  CAUGHT_BY failure.of-one-list-ends-no-run failure.of-all-lists-ends-no-run)

add_component_mutant(missing-list-leaves-no-scene
  SOURCE ResultIntake.cpp
  REPLACE [[        if (scenceRanges.empty()) {]]
  BY [[        if (found && scenceRanges.empty()) {]]
  CAUGHT_BY failure.of-list-loses-what-it-held)
