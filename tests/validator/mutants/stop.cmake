# Faults in how a run is stopped.

add_component_mutant(stop-sets-no-flag
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(1);
]]
  BY [[]]
  CAUGHT_BY stop.ignores-finish-behind-it stop.comes-to-no-end listeners.may-stop
    threads.bears-racing-stop nesting.ends-by-stop)

add_component_mutant(stop-sets-flag-last
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(1);
    // A task may report in its stop, and a listener release the component in there.
    const std::vector<Ref<IKorBaseTask>> toStop = tasks;
    for (const Ref<IKorBaseTask>& task : toStop)
        task->stop();]]
  BY [[    const std::vector<Ref<IKorBaseTask>> toStop = tasks;
    addRef();
    for (const Ref<IKorBaseTask>& task : toStop)
        task->stop();
    cancelled.exchange(1);
    release();]]
  CAUGHT_BY stop.counts-before-tasks-stop)

add_component_mutant(stop-gives-status-of-tasks
  SOURCE RunDriver.cpp
  REPLACE [[        task->stop();
    return statusOk;]]
  BY [[        if (task->stop() == statusFailed) return statusFailed;
    return statusOk;]]
  CAUGHT_BY stop.goes-past-failures)

add_component_mutant(stop-fails-without-tasks
  SOURCE RunDriver.cpp
  REPLACE [[        task->stop();
    return statusOk;]]
  BY [[        task->stop();
    return toStop.empty() ? statusFailed : statusOk;]]
  CAUGHT_BY stop.gives-0)

add_component_mutant(stop-stops-one-task
  SOURCE RunDriver.cpp
  REPLACE [[    for (const Ref<IKorBaseTask>& task : toStop)
        task->stop();]]
  BY [[    if (currentTaskIndex >= 0 && currentTaskIndex <= lastTaskIndex())
        tasks[static_cast<std::size_t>(currentTaskIndex)]->stop();]]
  CAUGHT_BY stop.stops-every-task stop.works-from-another-thread stop.stops-tasks-each-time)

add_component_mutant(stop-tells-listeners
  SOURCE RunDriver.cpp
  REPLACE [[        task->stop();
    return statusOk;]]
  BY [[        task->stop();
    callBacks.notify(*this, taskEventStopped, nullptr);
    return statusOk;]]
  CAUGHT_BY stop.tells-nothing-itself stop.harms-no-ended-run)

add_component_mutant(finish-behind-stop-is-taken
  SOURCE RunDriver.cpp
  REPLACE [[    if (cancelled.load() != 0) return statusFailed;
    const Status taken]]
  BY [[    const Status taken]]
  CAUGHT_BY stop.ignores-finish-behind-it)

add_component_mutant(nothing-passed-on-behind-stop
  SOURCE RunDriver.cpp
  REPLACE [[    if (category != taskEventCategory) return statusOk;]]
  BY [[    if (category != taskEventCategory || cancelled.load() != 0) return statusOk;]]
  CAUGHT_BY stop.rescales-progress-behind-it stop.passes-on-events-behind-it stop.stops-every-task)

add_component_mutant(progress-behind-stop-is-raw
  SOURCE RunDriver.cpp
  REPLACE [[    copy.progress = overallProgressAt(copy.progress);]]
  BY [[    if (cancelled.load() == 0) copy.progress = overallProgressAt(copy.progress);]]
  CAUGHT_BY stop.rescales-progress-behind-it)

add_component_mutant(stop-drops-records
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(1);]]
  BY [[    cancelled.exchange(1);
    analysisResults.clear();]]
  CAUGHT_BY stop.keeps-records stop.harms-no-ended-run)

add_component_mutant(start-keeps-stop
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(0);
]]
  BY [[]]
  CAUGHT_BY stop.allows-another-run stop.cancels-no-later-run)

add_component_mutant(stop-missed-before-task
  SOURCE RunDriver.cpp
  REPLACE [[    if (cancelled.load() != 0) return statusFailed;
    IBsMediaAnalysisTask]]
  BY [[    IBsMediaAnalysisTask]]
  CAUGHT_BY stop.keeps-next-task-from-starting stop.keeps-first-task-from-starting)

add_component_mutant(task-start-cancels-stop
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status started = task.start();]]
  BY [[    const Status started = task.start();
    cancelled.exchange(0);]]
  CAUGHT_BY stop.works-inside-task-start)

add_component_mutant(stop-only-once
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(1);]]
  BY [[    if (cancelled.exchange(1) != 0) return statusOk;]]
  CAUGHT_BY stop.stops-tasks-each-time)

add_component_mutant(stop-keeps-end-from-being-told
  SOURCE RunDriver.cpp
  REPLACE [[isBeyondLastMaterial() ? finishedAllAnalysis()]]
  BY [[isBeyondLastMaterial() && cancelled.load() == 0 ? finishedAllAnalysis()]]
  CAUGHT_BY stop.lets-a-finished-task-count)

add_component_mutant(stop-ends-choice-of-material
  SOURCE RunDriver.cpp
  REPLACE [[    while (IDmBaseMedia* const media = currentMaterial()) {]]
  BY [[    while (IDmBaseMedia* const media = currentMaterial()) {
        if (cancelled.load() != 0) return;]]
  CAUGHT_BY stop.lets-a-finished-task-count)

add_component_mutant(stop-keeps-file-from-being-written
  SOURCE AutoTrim.cpp
  REPLACE [[    saveMaterialAnalysisResult(media, ofMaterial);]]
  BY [[    if (cancelled.load() == 0) saveMaterialAnalysisResult(media, ofMaterial);]]
  CAUGHT_BY stop.lets-a-finished-task-count)
