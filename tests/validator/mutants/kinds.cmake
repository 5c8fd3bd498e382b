# Faults of making tasks for the kinds.

add_component_mutant(face-asks-for-entropy
  SOURCE TaskLaunch.cpp
  REPLACE [[            return {analysisTypeFace};]]
  BY [[            return {analysisTypeEntropy};]]
  CAUGHT_BY kinds.ask-for-their-types kinds.tasks-in-order-of-list)

add_component_mutant(kinds-keyframes-before-scenes
  SOURCE TaskLaunch.cpp
  REPLACE [[            return {analysisTypeScene, analysisTypeKeyFrame};]]
  BY [[            return {analysisTypeKeyFrame, analysisTypeScene};]]
  CAUGHT_BY kinds.combined-ask-for-both-types)

add_component_mutant(kinds-from-the-back
  SOURCE TaskLaunch.cpp
  REPLACE [[        const std::int32_t kind = kinds->at(i);]]
  BY [[        const std::int32_t kind = kinds->at(kinds->count() - 1 - i);]]
  CAUGHT_BY kinds.tasks-in-order-of-list kinds.stand-in-file-in-order)

add_component_mutant(kind-once-only
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!types || wanted.empty()) continue;]]
  BY [[        bool isListed = false;
        for (const std::int32_t earlier : analysisKinds)
            isListed = isListed || earlier == kind;
        if (!types || wanted.empty() || isListed) continue;]]
  CAUGHT_BY kinds.listed-twice)

add_component_mutant(unknown-kind-is-noted
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!types || wanted.empty()) continue;]]
  BY [[        if (wanted.empty()) analysisKinds.push_back(kind);
        if (!types || wanted.empty()) continue;]]
  CAUGHT_BY kinds.others-are-not-noted)

add_component_mutant(unknown-kind-gets-task
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!types || wanted.empty()) continue;]]
  BY [[        if (!types) continue;]]
  CAUGHT_BY kinds.others-are-ignored kinds.others-are-not-noted)

add_component_mutant(null-kinds-forget
  SOURCE TaskLaunch.cpp
  REPLACE [[    if (kinds == nullptr) return statusFailed;
    analysisKinds.clear();]]
  BY [[    analysisKinds.clear();
    if (kinds == nullptr) return statusFailed;]]
  CAUGHT_BY kinds.null-list-fails)

add_component_mutant(kind-without-list-is-noted
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!types || wanted.empty()) continue;]]
  BY [[        if (!types) analysisKinds.push_back(kind);
        if (!types || wanted.empty()) continue;]]
  CAUGHT_BY kinds.failing-list-skips-kind)

add_component_mutant(task-without-list
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!types || wanted.empty()) continue;]]
  BY [[        if (!types) createMediaAnalysisTask(nullptr);
        if (!types || wanted.empty()) continue;]]
  CAUGHT_BY kinds.no-task-without-list kinds.failing-list-skips-kind)

add_component_mutant(kind-without-task-is-dropped
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!task) continue;]]
  BY [[        if (!task) {
            analysisKinds.pop_back();
            continue;
        }]]
  CAUGHT_BY kinds.missing-task-leaves-kind kinds.later-tasks-move-up)

add_component_mutant(missing-task-fails
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!task) continue;]]
  BY [[        if (!task) return statusFailed;]]
  CAUGHT_BY kinds.return-0-always)

add_component_mutant(creation-reference-is-kept
  SOURCE TaskLaunch.cpp
  REPLACE [[        if (!task) continue;]]
  BY [[        if (!task) continue;
        task->addRef();]]
  CAUGHT_BY
    kinds.creation-reference-is-dropped
    counting.end-releases-tasks
    counting.held-task-lives-on)

add_component_mutant(nobody-listens
  SOURCE TaskLaunch.cpp
  REPLACE [[        task->addCallBack(this);
]]
  BY [[]]
  CAUGHT_BY kinds.each-task-is-listened-to kinds.ask-for-their-types)

add_component_mutant(earlier-tasks-are-dropped
  SOURCE TaskLaunch.cpp
  REPLACE [[    analysisKinds.clear();]]
  BY [[    analysisKinds.clear();
    tasks.clear();]]
  CAUGHT_BY kinds.earlier-tasks-stay-in-front kinds.earlier-tasks-are-kept)

add_component_mutant(earlier-kinds-stay
  SOURCE TaskLaunch.cpp
  REPLACE [[    analysisKinds.clear();
]]
  BY [[]]
  CAUGHT_BY kinds.earlier-kinds-are-forgotten kinds.empty-list-forgets-kinds)

add_component_mutant(type-lists-are-kept
  SOURCE TaskLaunch.cpp
  REPLACE [[Ref<IKORIntList>::adopt(createKORIntList())]]
  BY [[Ref<IKORIntList>::share(createKORIntList())]]
  CAUGHT_BY kinds.type-lists-are-released kinds.type-lists-are-released-of-none)

add_component_mutant(kinds-list-is-kept
  SOURCE TaskLaunch.cpp
  REPLACE [[    analysisKinds.clear();]]
  BY [[    analysisKinds.clear();
    kinds->addRef();]]
  CAUGHT_BY kinds.list-stays-the-callers)
