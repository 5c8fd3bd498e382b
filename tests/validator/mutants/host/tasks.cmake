# Faults of what tasks are made of and keep.

add_host_mutant(task-of-blur-refused
  SOURCE Task.cpp
  REPLACE [[known{KOR::analysisTypeScene, KOR::analysisTypeBlur,]]
  BY [[known{KOR::analysisTypeScene,]]
  CAUGHT_BY tasks.are-made-of-types)

add_host_mutant(types-not-looked-at
  SOURCE Task.cpp
  REPLACE [[types != nullptr && i < types->count();]]
  BY [[i < types->count();]]
  CAUGHT_BY tasks.of-other-types)

add_host_mutant(list-of-types-kept
  SOURCE Task.cpp
  REPLACE [[    return new plain_host::Task(types->at(0), wanted);]]
  BY [[    types->addRef();
    return new plain_host::Task(types->at(0), wanted);]]
  CAUGHT_BY tasks.leave-list-alone)

add_host_mutant(task-denies-its-base
  SOURCE Task.cpp
  REPLACE [[return static_cast<KOR::IKorBaseTask*>(this);]]
  BY [[return nullptr;]]
  CAUGHT_BY tasks.give-own-interfaces tasks.are-asked-for-interfaces)

add_host_mutant(third-value-is-the-second
  SOURCE Task.cpp
  REPLACE [[*third = info_[2];]]
  BY [[*third = info_[1];]]
  CAUGHT_BY tasks.keep-info)

add_host_mutant(info-written-in-part
  SOURCE Task.cpp
  REPLACE [[        if (!first || !second || !third) return KOR::statusFailed;]]
  BY [[        if (first) *first = info_[0];
        if (!first || !second || !third) return KOR::statusFailed;]]
  CAUGHT_BY tasks.write-no-part-of-info)

add_host_mutant(name-cut-short
  SOURCE Task.cpp
  REPLACE [[        name_ = name;]]
  BY [[        name_.assign(name, std::min(std::strlen(name), std::size_t{255}));]]
  CAUGHT_BY tasks.keep-name)

add_host_mutant(name-of-null-is-empty
  SOURCE Task.cpp
  REPLACE [[        if (name == nullptr) return KOR::statusFailed;
        name_ = name;]]
  BY [[        name_ = name == nullptr ? "" : name;]]
  CAUGHT_BY tasks.refuse-null-name)

add_host_mutant(priority-not-kept
  SOURCE Task.cpp
  REPLACE [[        priority_ = priority;]]
  BY [[        static_cast<void>(priority);]]
  CAUGHT_BY tasks.keep-priority tasks.give-own-interfaces)

add_host_mutant(null-list-for-results-taken
  SOURCE Task.cpp
  REPLACE [[        if (list == nullptr) return KOR::statusFailed;]]
  BY [[        if (list == nullptr) return KOR::statusOk;]]
  CAUGHT_BY tasks.refuse-null)

add_host_mutant(empty-list-of-ranges-refused
  SOURCE Task.cpp
  REPLACE [[        if (ranges == nullptr) return KOR::statusFailed;]]
  BY [[        if (ranges == nullptr || ranges->count() == 0) return KOR::statusFailed;]]
  CAUGHT_BY tasks.take-empty-lists keyframes.without-ranges)

add_host_mutant(nan-for-a-threshold-taken
  SOURCE Task.cpp
  REPLACE [[return number > 0 && number <= 1e300;]]
  BY [[return !(number <= 0);]]
  CAUGHT_BY tasks.refuse-scene-blocks)

add_host_mutant(thresholds-from-one-on
  SOURCE Task.cpp
  REPLACE [[return number > 0 && number <= 1e300;]]
  BY [[return number >= 1 && number <= 1e300;]]
  CAUGHT_BY tasks.take-scene-blocks)

add_host_mutant(no-keyframe-a-scene-taken
  SOURCE Task.cpp
  REPLACE [[        if (keyFrame.maxPerScene < 1 ||]]
  BY [[        if (keyFrame.maxPerScene < 0 ||]]
  CAUGHT_BY tasks.refuse-keyframe-blocks)

add_host_mutant(no-margin-refused
  SOURCE Task.cpp
  REPLACE [[            keyFrame.marginFramesEnd < 0)]]
  BY [[            keyFrame.marginFramesEnd < 1)]]
  CAUGHT_BY tasks.take-keyframe-blocks)

add_host_mutant(any-block-taken
  SOURCE Task.cpp
  REPLACE [[        if (type != KOR::analysisTypeKeyFrame) return KOR::statusFailed;]]
  BY [[        if (type != KOR::analysisTypeKeyFrame) return KOR::statusOk;]]
  CAUGHT_BY tasks.refuse-other-blocks)

add_host_mutant(no-results-is-a-failure
  SOURCE Task.cpp
  REPLACE [[        if (!results || found == results->end()) return KOR::statusOk;]]
  BY [[        if (!results || found == results->end()) return KOR::statusFailed;]]
  CAUGHT_BY tasks.have-no-results-at-first results.are-none-of-other-kinds failed.have-no-results
    stop.leaves-no-results)

add_host_mutant(tasks-of-one-thread
  SOURCE Task.cpp
  REPLACE [[    if (wanted.empty() || !std::ranges::includes(known, wanted)) return nullptr;]]
  BY [[    static const auto owner = std::this_thread::get_id();
    if (std::this_thread::get_id() != owner) return nullptr;
    if (wanted.empty() || !std::ranges::includes(known, wanted)) return nullptr;]]
  CAUGHT_BY tasks.are-made-on-threads threads.drive-on-threads hosting.drives-side-by-side)

add_host_mutant(tasks-run-out
  SOURCE Task.cpp
  REPLACE [[    return new plain_host::Task(types->at(0), wanted);]]
  BY [[    static int left = 4000;
    return left-- > 0 ? new plain_host::Task(types->at(0), wanted) : nullptr;]]
  CAUGHT_BY destruction.of-thousands)
