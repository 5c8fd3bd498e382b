# Faults in how a run goes from task to task, and begins and ends.

add_component_mutant(start-keeps-task
  SOURCE RunDriver.cpp
  REPLACE [[    currentTaskIndex = -1;
]]
  BY [[]]
  CAUGHT_BY run.can-follow-a-run)

add_component_mutant(start-keeps-scenes
  SOURCE RunDriver.cpp
  REPLACE [[    scenceRanges.clear();
]]
  BY [[]]
  CAUGHT_BY run.forgets-scenes-at-start)

add_component_mutant(start-keeps-keyframes
  SOURCE RunDriver.cpp
  REPLACE [[    keyFramesOfScences.clear();
]]
  BY [[]]
  CAUGHT_BY run.forgets-keyframes-at-start)

add_component_mutant(start-keeps-ranking
  SOURCE RunDriver.cpp
  REPLACE [[    scenceScores.clear();
]]
  BY [[]]
  CAUGHT_BY run.forgets-ranking-at-start)

add_component_mutant(start-keeps-records
  SOURCE RunDriver.cpp
  REPLACE [[    analysisResults.clear();
]]
  BY [[]]
  CAUGHT_BY run.forgets-records-at-start)

add_component_mutant(start-always-succeeds
  SOURCE RunDriver.cpp
  REPLACE [[    return onTaskFinished();
}]]
  BY [[    onTaskFinished();
    return statusOk;
}]]
  CAUGHT_BY failure.of-task-start-shows-in-start)

add_component_mutant(start-never-succeeds
  SOURCE RunDriver.cpp
  REPLACE [[    return onTaskFinished();
}]]
  BY [[    onTaskFinished();
    return statusFailed;
}]]
  CAUGHT_BY run.start-gives-0 run.ends-at-once-without-materials)

add_component_mutant(first-material-is-passed-over
  SOURCE RunDriver.cpp
  REPLACE [[        moveToMaterial(0);
        currentTaskIndex = 0;]]
  BY [[        moveToMaterial(1);
        currentTaskIndex = 0;]]
  CAUGHT_BY run.starts-first-task-on-first-material)

add_component_mutant(two-tasks-at-once
  SOURCE RunDriver.cpp
  REPLACE [[    return next == statusFailed ? statusFailed : taken;]]
  BY [[    if (currentTaskIndex == 0 && tasks.size() > 1) tasks[1]->start();
    return next == statusFailed ? statusFailed : taken;]]
  CAUGHT_BY run.has-one-task-at-a-time)

add_component_mutant(end-told-twice
  SOURCE AutoTrim.cpp
  REPLACE [[    callBacks.notify(*this, taskEventFinished, &payload);]]
  BY [[    callBacks.notify(*this, taskEventFinished, &payload);
    callBacks.notify(*this, taskEventFinished, &payload);]]
  CAUGHT_BY run.tells-its-end-once)

add_component_mutant(end-logged-once-more-behind-it
  SOURCE AutoTrim.cpp
  REPLACE [[    callBacks.notify(*this, taskEventFinished, &payload);]]
  BY [[    callBacks.notify(*this, taskEventFinished, &payload);
    logLine(function, "auto trim result: \n");]]
  CAUGHT_BY run.does-nothing-behind-its-end)

add_component_mutant(end-not-at-100-percent
  SOURCE AutoTrim.cpp
  REPLACE [[payload.progress = 100;]]
  BY [[payload.progress = 0;]]
  CAUGHT_BY run.tells-its-end-once)

add_component_mutant(records-gone-at-the-end
  SOURCE AutoTrim.cpp
  REPLACE [[    payload.progress = 100;]]
  BY [[    payload.progress = 100;
    const std::vector<OwnedResult> gone = std::move(analysisResults);]]
  CAUGHT_BY run.has-its-records-at-its-end)

add_component_mutant(records-logged-backwards
  SOURCE AutoTrim.cpp
  REPLACE [[    for (const OwnedResult& result : analysisResults) {
        const]]
  BY [[    for (auto at = analysisResults.rbegin(); at != analysisResults.rend(); ++at) {
        const OwnedResult& result = *at;
        const]]
  CAUGHT_BY run.logs-its-records-at-its-end)

add_component_mutant(next-material-forgets-findings
  SOURCE RunDriver.cpp
  REPLACE [[    currentMaterialIndex = index;
    NestedStart]]
  BY [[    currentMaterialIndex = index;
    scenceRanges.clear();
    keyFramesOfScences.clear();
    NestedStart]]
  CAUGHT_BY run.hands-on-keyframes run.hands-on-scenes)

add_component_mutant(blur-read-as-entropy
  SOURCE RunDriver.cpp
  REPLACE [[        case analysisKindEntropy:
            status]]
  BY [[        case analysisKindBlur:
        case analysisKindEntropy:
            status]]
  CAUGHT_BY run.reads-nothing-of-blur)

add_component_mutant(blur-last-collects-nothing
  SOURCE RunDriver.cpp
  REPLACE [[        default:  // Blur, whose results count for nothing, is a failure by contract.
            break;]]
  BY [[        default:
            return status;]]
  CAUGHT_BY run.collects-after-blur)

add_component_mutant(one-kind-collects
  SOURCE RunDriver.cpp
  REPLACE [[currentTaskIndex > 0 && currentTaskIndex]]
  BY [[currentTaskIndex]]
  CAUGHT_BY run.collects-nothing-of-one-kind)

add_component_mutant(every-task-collects
  SOURCE RunDriver.cpp
  REPLACE [[    if (currentTaskIndex > 0 && currentTaskIndex == lastTaskIndex()) {]]
  BY [[    if (currentTaskIndex > 0) {]]
  CAUGHT_BY run.collects-after-the-last-task)

add_component_mutant(last-task-counted-by-kinds
  SOURCE RunDriver.cpp
  REPLACE [[    return static_cast<std::int32_t>(tasks.size()) - 1;]]
  BY [[    return static_cast<std::int32_t>(analysisKinds.size()) - 1;]]
  CAUGHT_BY run.pairs-kinds-with-earlier-tasks run.pairs-kinds-behind-a-missing-task)

add_component_mutant(second-kinds-drop-tasks
  SOURCE TaskLaunch.cpp
  REPLACE [[    analysisKinds.clear();]]
  BY [[    analysisKinds.clear();
    tasks.clear();]]
  CAUGHT_BY run.pairs-kinds-with-earlier-tasks)

add_component_mutant(missing-task-drops-kind
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!task) continue;]]
  BY [[        if (!task) {
            analysisKinds.pop_back();
            continue;
        }]]
  CAUGHT_BY run.pairs-kinds-behind-a-missing-task)

add_component_mutant(restored-is-analysed
  SOURCE RunDriver.cpp
  REPLACE [[        } else if (!restoreMaterialAnalysisResult(media)) {]]
  BY [[        } else if (restoreMaterialAnalysisResult(media); true) {]]
  CAUGHT_BY run.takes-restored-videos-as-done)

add_component_mutant(state-follows-the-run
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    return state;]]
  BY [[    return currentTaskIndex < 0 ? state : 1;]]
  CAUGHT_BY run.keeps-its-state-0)

add_component_mutant(scores-logged-at-length
  SOURCE AutoTrim.cpp
  REPLACE [[" socre: ", result->score,]]
  BY [[" socre: ", std::to_string(result->score),]]
  CAUGHT_BY run.logs-doubles-shortly run.logs-its-records-at-its-end)

add_component_mutant(every-second-material-is-left-out
  SOURCE RunDriver.cpp
  REPLACE [[        moveToMaterial(currentMaterialIndex + 1);
        currentTaskIndex = 0;]]
  BY [[        moveToMaterial(currentMaterialIndex + 2);
        currentTaskIndex = 0;]]
  CAUGHT_BY run.goes-from-task-to-task-and-on)

add_component_mutant(first-finish-is-ignored
  SOURCE RunDriver.cpp
  REPLACE [[    onTaskFinished();
    // The step]]
  BY [[    if (currentTaskIndex != 0) onTaskFinished();
    // The step]]
  CAUGHT_BY run.starts-next-task-inside-finish)
