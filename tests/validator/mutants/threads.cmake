# Faults that show on more than one thread.

add_component_mutant(events-from-one-thread-only
  SOURCE RunDriver.cpp
  REPLACE [[    if (category != taskEventCategory) return statusOk;]]
  BY [[    static const pthread_t home = pthread_self();
    if (category != taskEventCategory || !pthread_equal(home, pthread_self())) return statusOk;]]
  CAUGHT_BY threads.takes-events-from-any-thread threads.starts-on-any-thread
    threads.takes-finish-before-start-returns)

add_component_mutant(references-counted-in-two-steps
  SOURCE RefCnt.cpp
  REPLACE [[    const std::uint32_t before = block_->references.fetch_add(1);]]
  BY [[    const std::uint32_t before = block_->references.load();
    sched_yield();
    block_->references.store(before + 1);]]
  FAILED_BY threads.counts-references-on-many-threads)

add_component_mutant(references-given-back-in-two-steps
  SOURCE RefCnt.cpp
  REPLACE [[        const std::uint32_t left = block_->references.fetch_sub(1) - 1;]]
  BY [[        const std::uint32_t left = block_->references.load() - 1;
        sched_yield();
        block_->references.store(left);]]
  FAILED_BY threads.counts-references-on-many-threads)

add_component_mutant(last-release-leaks-elsewhere
  SOURCE RefCnt.cpp
  REPLACE [[    delete this;]]
  BY [[    if (gettid() == getpid()) delete this;]]
  CAUGHT_BY threads.is-released-elsewhere)

add_component_mutant(threads-one-component-for-all
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(0);]]
  BY [[    static const void* const only = this;
    if (only != this) return statusFailed;
    cancelled.exchange(0);]]
  CAUGHT_BY threads.run-side-by-side nesting.leaves-others-alone)
