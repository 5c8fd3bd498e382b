# Faults of the component as a task.

add_component_mutant(another-type
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[materialAnalysisTaskType = 10;]]
  BY [[materialAnalysisTaskType = 1;]]
  CAUGHT_BY basetask.type-is-10)

add_component_mutant(info-begins-with-type
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    *first = taskInfo[0];]]
  BY [[    *first = taskInfo[0] == 0 ? materialAnalysisTaskType : taskInfo[0];]]
  CAUGHT_BY basetask.info-begins-with-zeros)

add_component_mutant(info-forgets-third-value
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    *third = taskInfo[2];]]
  BY [[    *third = taskInfo[1];]]
  CAUGHT_BY basetask.info-is-stored)

add_component_mutant(info-written-as-far-as-possible
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (first == nullptr || second == nullptr || third == nullptr) return statusFailed;]]
  BY [[    if (first != nullptr) *first = taskInfo[0];
    if (first == nullptr || second == nullptr || third == nullptr) return statusFailed;]]
  CAUGHT_BY basetask.info-needs-three-pointers)

add_component_mutant(empty-name-is-null
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    return taskName.c_str();]]
  BY [[    return taskName.empty() ? nullptr : taskName.c_str();]]
  CAUGHT_BY basetask.name-begins-empty basetask.any-name-is-kept)

add_component_mutant(name-is-borrowed
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[const char* KorMaterialAnalysis::getTaskName() {
    return taskName.c_str();
}

Status KorMaterialAnalysis::setTaskName(const char* name) {
    if (name == nullptr) return statusFailed;
    taskName = name;]]
  BY [[static const char* borrowed = "";

const char* KorMaterialAnalysis::getTaskName() {
    return borrowed;
}

Status KorMaterialAnalysis::setTaskName(const char* name) {
    if (name == nullptr) return statusFailed;
    borrowed = name;]]
  CAUGHT_BY basetask.name-is-copied)

add_component_mutant(name-is-cut
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    taskName = name;]]
  BY [[    taskName = std::string(name).substr(0, 255);]]
  CAUGHT_BY basetask.any-name-is-kept)

add_component_mutant(null-name-empties
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (name == nullptr) return statusFailed;
    taskName = name;]]
  BY [[    taskName = name == nullptr ? "" : name;]]
  CAUGHT_BY basetask.null-name-is-refused)

add_component_mutant(start-empties-name
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(0);]]
  BY [[    cancelled.exchange(0);
    taskName.clear();]]
  CAUGHT_BY basetask.run-keeps-name-and-info)

add_component_mutant(null-listener-fails
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (callBack != nullptr) callBacks.add(*callBack);]]
  BY [[    if (callBack == nullptr) return statusFailed;
    callBacks.add(*callBack);]]
  CAUGHT_BY basetask.null-listener-is-ignored)

add_component_mutant(removing-null-works
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (callBack == nullptr) return statusFailed;]]
  BY [[    if (callBack == nullptr) return statusOk;]]
  CAUGHT_BY basetask.removing-null-fails)

add_component_mutant(last-listener-first
  SOURCE ListenerList.cpp
  REPLACE [[    entries_.push_back(]]
  BY [[    entries_.push_front(]]
  CAUGHT_BY basetask.listeners-told-in-order)

add_component_mutant(listener-once-only
  SOURCE ListenerList.cpp
  REPLACE [[    entries_.push_back(]]
  BY [[    remove(listener);
    entries_.push_back(]]
  CAUGHT_BY basetask.listener-added-twice)

add_component_mutant(one-entry-removed
  SOURCE ListenerList.cpp
  REPLACE [[    entries_.remove_if([&listener](const Entry& entry) {
        if (entry->load() != &listener) return false;]]
  BY [[    bool isDone = false;
    entries_.remove_if([&](const Entry& entry) {
        if (isDone || entry->load() != &listener) return false;
        isDone = true;]]
  CAUGHT_BY basetask.removes-every-entry)

add_component_mutant(removing-fails
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    callBacks.remove(*callBack);
    return statusOk;]]
  BY [[    callBacks.remove(*callBack);
    return statusFailed;]]
  CAUGHT_BY basetask.removing-stranger basetask.removes-every-entry)

add_component_mutant(pause-works
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[Status KorMaterialAnalysis::pause() {
    return statusFailed;]]
  BY [[Status KorMaterialAnalysis::pause() {
    return statusOk;]]
  CAUGHT_BY basetask.idle-pause-fails basetask.pause-without-effect)

add_component_mutant(resume-reaches-tasks
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[Status KorMaterialAnalysis::resume() {]]
  BY [[Status KorMaterialAnalysis::resume() {
    for (const auto& task : tasks)
        task->resume();]]
  CAUGHT_BY basetask.pause-without-effect)

add_component_mutant(state-tells-of-run
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(0);]]
  BY [[    cancelled.exchange(0);
    state = 1;]]
  CAUGHT_BY basetask.state-is-always-0)

add_component_mutant(priority-begins-at-50
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    component->addRef();
    return component;]]
  BY [[    component->addRef();
    component->setPriority(50);
    return component;]]
  CAUGHT_BY basetask.priority-begins-at-100)

add_component_mutant(priority-is-dropped
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    taskPriority = priority;]]
  BY [[    static_cast<void>(priority);]]
  CAUGHT_BY
    basetask.priority-is-stored
    basetask.priority-is-handed-on
    basetask.priority-counts-at-next-start)

add_component_mutant(tasks-get-100
  SOURCE TaskLaunch.cpp
  REPLACE [[    task.setPriority(taskPriority);]]
  BY [[    task.setPriority(100);]]
  CAUGHT_BY basetask.priority-is-handed-on basetask.priority-counts-at-next-start)

add_component_mutant(priority-counts-at-once
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    taskPriority = priority;]]
  BY [[    taskPriority = priority;
    for (const auto& task : tasks)
        task->setPriority(priority);]]
  CAUGHT_BY basetask.priority-counts-at-next-start)

add_component_mutant(priority-clamped
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    taskPriority = priority;]]
  BY [[    taskPriority = std::min(priority, 100U);]]
  CAUGHT_BY basetask.priority-is-stored)
