# Faults of counting references, of observers and of interfaces, in every object of a host.

add_host_mutant(object-begins-with-two-references
  SOURCE Counted.h
  REPLACE [[std::atomic<std::uint32_t> count_ = 1;]]
  BY [[std::atomic<std::uint32_t> count_ = 2;]]
  CAUGHT_BY lists.count-their-references media.count-their-references tasks.count-their-references
    lists.owning-frees-elements)

add_host_mutant(references-counted-by-one-thread
  SOURCE Counted.h
  REPLACE [[while (count != 0 && !count_.compare_exchange_weak(count, count + 1)) {]]
  BY [[sched_yield();
        while (count != 0 && (count_ = count + 1) == 0) {]]
  CAUGHT_BY lists.count-references-on-threads media.count-references-on-threads
    tasks.count-references-on-threads)

add_host_mutant(observer-ignored
  SOURCE Counted.h
  REPLACE [[setDestroyObserver(KOR::IDmDestroyObserver* observer) override { observer_ = observer; }]]
  BY [[setDestroyObserver(KOR::IDmDestroyObserver*) override {}]]
  CAUGHT_BY lists.keep-observer media.keep-observer tasks.keep-observer)

add_host_mutant(observer-never-taken-off
  SOURCE Counted.h
  REPLACE [[override { observer_ = observer; }]]
  BY [[override { if (observer != nullptr) observer_ = observer; }]]
  CAUGHT_BY lists.forget-observer media.forget-observer tasks.forget-observer lists.keep-observer)

add_host_mutant(observer-told-of-every-release
  SOURCE Counted.h
  REPLACE [[        if (left != 0) return left;]]
  BY [[        if (left != 0 && observer_) observer_.load()->objectDestroyed();
        if (left != 0) return left;]]
  CAUGHT_BY lists.tell-observer-once media.tell-observer-once tasks.tell-observer-once)

add_host_mutant(observer-not-told
  SOURCE Counted.h
  REPLACE [[observer->objectDestroyed();]]
  BY [[static_cast<void>(observer);]]
  CAUGHT_BY lists.tell-observer-once media.tell-observer-once tasks.tell-observer-once
    destruction.tells-observer destruction.inside-progress)

add_host_mutant(interface-by-the-begin-of-its-name
  SOURCE Counted.h
  REPLACE [[return name && name == wanted; }]]
  BY [[return name && wanted.starts_with(name); }]]
  CAUGHT_BY lists.are-asked-for-interfaces media.are-asked-for-interfaces
    tasks.are-asked-for-interfaces)

add_host_mutant(query-adds-a-reference
  SOURCE Counted.h
  REPLACE [[isName(name, "IDmBaseObj") ? static_cast<KOR::IDmBaseObj*>(this) : nullptr;]]
  BY [[isName(name, "IDmBaseObj") ? (addRef(), static_cast<KOR::IDmBaseObj*>(this)) : nullptr;]]
  CAUGHT_BY media.queries-add-no-reference tasks.queries-add-no-reference)

add_host_mutant(object-dies-with-one-reference-left
  SOURCE Counted.h
  REPLACE [[        if (left != 0) return left;]]
  BY [[        if (left > 1) return left;]]
  CAUGHT_BY destruction.needs-the-last-reference tasks.count-their-references)
