# Faults of going on where a step of a start fails.

add_component_mutant(refused-source-ends-preparation
  SOURCE TaskLaunch.cpp
  REPLACE [[    task.setPriority(taskPriority);]]
  BY [[    if (status == statusFailed) return status;
    task.setPriority(taskPriority);]]
  CAUGHT_BY
    launch-faults.failed-source
    launch-faults.missing-source
    launch-faults.missing-source-media)

add_component_mutant(unprepared-task-is-not-started
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status started = task.start();]]
  BY [[    if (prepared == statusFailed) return prepared;
    const Status started = task.start();]]
  CAUGHT_BY
    launch-faults.failed-source
    launch-faults.failed-hand-over
    launch-faults.missing-list
    launch-faults.later-failure-goes-on)

add_component_mutant(failed-start-is-success
  SOURCE TaskLaunch.cpp
  REPLACE [[    return combined(prepared, started);]]
  BY [[    static_cast<void>(started);
    return prepared;]]
  CAUGHT_BY launch-faults.failed-start)

add_component_mutant(failed-preparation-is-success
  SOURCE TaskLaunch.cpp
  REPLACE [[    return combined(prepared, started);]]
  BY [[    static_cast<void>(prepared);
    return started;]]
  CAUGHT_BY
    launch-faults.failed-source
    launch-faults.failed-hand-over
    launch-faults.either-block-counts
    launch-faults.missing-source)

add_component_mutant(line-of-started-task-only
  SOURCE TaskLaunch.cpp
  REPLACE [[    logLine(source, text, mark.materialIndex(), "\n");]]
  BY [[    if (started != statusFailed) logLine(source, text, mark.materialIndex(), "\n");]]
  CAUGHT_BY launch-faults.failed-start)

add_component_mutant(last-block-counts
  SOURCE TaskLaunch.cpp
  REPLACE [[            combined(status, task->setParameterBlock(analysisTypeKeyFrame, &keyFrameParameters));]]
  BY [[            task->setParameterBlock(analysisTypeKeyFrame, &keyFrameParameters);]]
  CAUGHT_BY launch-faults.either-block-counts)

add_component_mutant(every-start-fails
  SOURCE TaskLaunch.cpp
  REPLACE [[    return combined(prepared, started);]]
  BY [[    return combined(prepared, started == statusOk ? statusFailed : started);]]
  CAUGHT_BY launch-faults.good-launch-returns-0)

add_component_mutant(every-other-status-fails
  SOURCE TaskLaunch.cpp
  REPLACE [[    return step == statusFailed ? statusFailed : status;]]
  BY [[    return step != statusOk ? statusFailed : status;]]
  CAUGHT_BY launch-faults.other-status-is-no-failure)

add_component_mutant(source-media-is-taken-for-granted
  SOURCE MediaQueries.cpp
  REPLACE [[    return sourceMedia == nullptr ? nullptr : sourceMedia->getSource();]]
  BY [[    return sourceMedia->getSource();]]
  CAUGHT_BY launch-faults.missing-source-media)

add_component_mutant(null-source-is-not-handed-over
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status status = task.setSource(sourceOf(currentMaterial()), 0, 0);]]
  BY [[    IDmMediaSource* const own = sourceOf(currentMaterial());
    const Status status = own == nullptr ? statusFailed : task.setSource(own, 0, 0);]]
  CAUGHT_BY launch-faults.missing-source launch-faults.missing-source-media)

add_component_mutant(positions-are-taken-for-granted
  SOURCE TaskLaunch.cpp
  REPLACE [[    if (!positions) return statusFailed;
]]
  BY [[]]
  CAUGHT_BY launch-faults.missing-list)

add_component_mutant(missing-interface-is-success
  SOURCE TaskLaunch.cpp
  REPLACE [[Status KorMaterialAnalysis::startEntropyCalculate(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;]]
  BY [[Status KorMaterialAnalysis::startEntropyCalculate(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusOk;]]
  CAUGHT_BY launch-faults.hidden-interface)

add_component_mutant(failed-start-cancels
  SOURCE RunDriver.cpp
  REPLACE [[    return next == statusFailed ? statusFailed : taken;]]
  BY [[    if (next == statusFailed) cancelled.exchange(1);
    return next == statusFailed ? statusFailed : taken;]]
  CAUGHT_BY launch-faults.later-failure-goes-on)

add_component_mutant(logger-is-taken-for-granted
  SOURCE LogLine.cpp
  REPLACE [[    if (logger == nullptr || !logger->testSeverity(IBsLogger::info)) return;]]
  BY [[    if (!logger->testSeverity(IBsLogger::info)) return;]]
  CAUGHT_BY launch-faults.no-logger)

add_component_mutant(severity-is-not-asked-for
  SOURCE LogLine.cpp
  REPLACE [[    if (logger == nullptr || !logger->testSeverity(IBsLogger::info)) return;]]
  BY [[    if (logger == nullptr) return;]]
  CAUGHT_BY launch-faults.no-severity)

add_component_mutant(stream-is-taken-for-granted
  SOURCE LogLine.cpp
  REPLACE [[    if (stream_ != nullptr) stream_->close();]]
  BY [[    stream_->close();]]
  CAUGHT_BY launch-faults.no-stream)

add_component_mutant(launch-needs-a-logger
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status started = task.start();]]
  BY [[    if (loggerWrapper(0) == nullptr) return statusFailed;
    const Status started = task.start();]]
  CAUGHT_BY launch-faults.no-logger logs.absent-logger-changes-nothing)

add_component_mutant(launch-needs-a-stream
  SOURCE TaskLaunch.cpp
  REPLACE [[    const Status started = task.start();]]
  BY [[    KorLoggerWrapper* const logger = loggerWrapper(0);
    const bool isWanted = logger != nullptr && logger->testSeverity(IBsLogger::info);
    const LogLine line("KOR::KorMaterialAnalysis");
    if (isWanted && !line) return statusFailed;
    const Status started = task.start();]]
  FAILED_BY launch-faults.no-stream logs.refused-lines-change-nothing)
