# Faults in what the last release does, and inside what it may come.

add_component_mutant(release-stops-tasks
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    tasks.clear();]]
  BY [[    for (const Ref<IKorBaseTask>& task : tasks)
        task->stop();
    tasks.clear();]]
  CAUGHT_BY release.stops-and-tells-nothing)

add_component_mutant(release-keeps-tasks
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    tasks.clear();]]
  BY [[    for (const Ref<IKorBaseTask>& task : tasks)
        task->addRef();]]
  CAUGHT_BY release.without-use-leaves-nothing release.between-runs-leaves-nothing
    release.after-stop-leaves-nothing release.gives-tasks-back-once
    release.may-come-inside-the-end release.may-come-inside-its-own-stop)

add_component_mutant(release-keeps-materials
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    materials.clear();
    tasks.clear();]]
  BY [[    for (const Ref<IDmBaseMedia>& material : materials)
        material->addRef();
    tasks.clear();]]
  CAUGHT_BY release.gives-materials-back-once release.without-use-leaves-nothing
    release.may-come-inside-its-own-start)

add_component_mutant(release-cancels-the-run
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    return RefCnt<void>::release();]]
  BY [[    stop();
    return RefCnt<void>::release();]]
  CAUGHT_BY release.leaves-run-to-other-references)

add_component_mutant(copies-share-one-reference
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        copy.release();
        result->media->addRef();]]
  BY [[        copy.release();]]
  CAUGHT_BY release.leaves-results-to-the-host)

add_component_mutant(scene-pairs-leaked
  SOURCE TaskLaunch.cpp
  REPLACE [[        status = combined(status, ranges->append(pairs.back().get()));]]
  BY [[        status = combined(status, ranges->append(pairs.back().release()));]]
  CAUGHT_BY release.takes-no-more-memory)
