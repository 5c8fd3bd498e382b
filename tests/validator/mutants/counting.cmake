# Faults of counting references and of the end of a component.

add_component_mutant(add-ref-tells-count-before
  SOURCE RefCnt.cpp
  REPLACE [[    if (before != 0) return before + 1;]]
  BY [[    if (before != 0) return before;]]
  CAUGHT_BY counting.returns-new-count)

add_component_mutant(count-is-always-1
  SOURCE RefCnt.cpp
  REPLACE [[    return block_->references.load();]]
  BY [[    return 1;]]
  CAUGHT_BY counting.tells-count identity.one-object-behind-base)

add_component_mutant(ends-with-a-reference-left
  SOURCE RefCnt.cpp
  REPLACE [[        if (left > 0) return left;]]
  BY [[        if (left > 1) return left;]]
  CAUGHT_BY
    counting.works-with-what-is-left
    counting.observer-told-of-last-only
    counting.returns-new-count)

add_component_mutant(run-takes-a-reference
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(0);]]
  BY [[    cancelled.exchange(0);
    addRef();]]
  CAUGHT_BY
    counting.use-leaves-count
    counting.end-gives-everything-back
    counting.ends-inside-last-event)

add_component_mutant(observer-is-not-told
  SOURCE RefCnt.cpp
  REPLACE [[    if (IDmDestroyObserver* const observer = observer_.load()) observer->objectDestroyed();
]]
  BY [[]]
  CAUGHT_BY counting.observer-told-once counting.last-observer-counts counting.observer-told-first)

add_component_mutant(observer-is-told-of-each-release
  SOURCE RefCnt.cpp
  REPLACE [[    if (static_cast<std::int32_t>(block_->references.load()) > 0) {]]
  BY [[    if (observer_.load() != nullptr) observer_.load()->objectDestroyed();
    if (static_cast<std::int32_t>(block_->references.load()) > 0) {]]
  CAUGHT_BY counting.observer-told-once counting.observer-told-of-last-only)

add_component_mutant(observer-stays
  SOURCE RefCnt.cpp
  REPLACE [[    observer_.exchange(observer);]]
  BY [[    if (observer != nullptr) observer_.exchange(observer);]]
  CAUGHT_BY counting.observer-taken-off)

add_component_mutant(first-observer-stays
  SOURCE RefCnt.cpp
  REPLACE [[    observer_.exchange(observer);]]
  BY [[    if (observer == nullptr || observer_.load() == nullptr) observer_.exchange(observer);]]
  CAUGHT_BY counting.last-observer-counts counting.observer-is-given-back)

add_component_mutant(observer-from-the-beginning
  SOURCE RefCnt.cpp
  REPLACE [[    return observer_.load();]]
  BY [[    if (IDmDestroyObserver* const observer = observer_.load()) return observer;
    return reinterpret_cast<IDmDestroyObserver*>(block_);]]
  CAUGHT_BY counting.no-observer-at-first counting.observer-taken-off)

add_component_mutant(observer-is-told-last
  SOURCE RefCnt.cpp
  REPLACE [[    if (IDmDestroyObserver* const observer = observer_.load()) observer->objectDestroyed();
    delete this;]]
  BY [[    IDmDestroyObserver* const observer = observer_.load();
    delete this;
    if (observer != nullptr) observer->objectDestroyed();]]
  CAUGHT_BY counting.observer-told-first)

add_component_mutant(tasks-end-before-materials
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    materials.clear();
    tasks.clear();]]
  BY [[    tasks.clear();
    materials.clear();]]
  CAUGHT_BY counting.ends-in-order)

add_component_mutant(materials-are-kept
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    cancelled.exchange(1);]]
  BY [[    cancelled.exchange(1);
    for (const auto& material : materials)
        material->addRef();]]
  CAUGHT_BY counting.end-releases-materials counting.end-gives-everything-back)

add_component_mutant(results-are-kept
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    scenceScores.clear();
    analysisResults.clear();]]
  BY [[    scenceScores.clear();
    for (OwnedResult& result : analysisResults)
        result.release();]]
  CAUGHT_BY counting.end-releases-results counting.end-gives-everything-back)

add_component_mutant(tasks-are-kept
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    cancelled.exchange(1);]]
  BY [[    cancelled.exchange(1);
    for (const auto& task : tasks)
        task->addRef();]]
  CAUGHT_BY
    counting.end-releases-tasks
    counting.held-task-lives-on
    counting.end-gives-everything-back)

add_component_mutant(end-stops-tasks
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    NestedStart::ownerDestroyed(this);]]
  BY [[    NestedStart::ownerDestroyed(this);
    for (const auto& task : tasks)
        task->stop();]]
  CAUGHT_BY counting.end-stops-no-task counting.end-sends-no-event)

add_component_mutant(events-take-a-reference
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  BY [[    sender.addRef();
    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  CAUGHT_BY counting.use-leaves-count counting.ends-inside-last-event)

add_component_mutant(every-release-gives-materials-back
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    return RefCnt<void>::release();]]
  BY [[    materials.clear();
    return RefCnt<void>::release();]]
  FAILED_BY counting.works-with-what-is-left)
