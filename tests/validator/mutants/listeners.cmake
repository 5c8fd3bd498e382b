# Faults in the list of listeners.

add_component_mutant(listeners-told-backwards
  SOURCE ListenerList.cpp
  REPLACE [[told(entries_.begin(), entries_.end())]]
  BY [[told(entries_.rbegin(), entries_.rend())]]
  CAUGHT_BY listeners.are-told-in-order)

add_component_mutant(listener-added-once
  SOURCE ListenerList.cpp
  REPLACE [[    entries_.push_back(]]
  BY [[    for (const Entry& entry : entries_) {
        if (entry->load() == &listener) return;
    }
    entries_.push_back(]]
  CAUGHT_BY listeners.added-twice-are-told-twice)

add_component_mutant(listeners-one-entry-removed
  SOURCE ListenerList.cpp
  REPLACE [[    entries_.remove_if([&listener](const Entry& entry) {
        if (]]
  BY [[    bool removed = false;
    entries_.remove_if([&listener, &removed](const Entry& entry) {
        if (removed) return false;
        removed = entry->load() == &listener;
        if (]]
  CAUGHT_BY listeners.are-removed-wholly listeners.lose-second-entry-in-first-call)

add_component_mutant(removed-listener-still-called
  SOURCE ListenerList.cpp
  REPLACE [[        entry->store(nullptr);
        return true;]]
  BY [[        return true;]]
  CAUGHT_BY listeners.are-not-called-once-removed listeners.may-all-be-removed
    listeners.may-die-once-removed listeners.lose-second-entry-in-first-call
    listeners.replaced-wait-for-next)

add_component_mutant(removal-lasts-one-event
  SOURCE ListenerList.cpp
  REPLACE [[        entry->store(nullptr);
        return true;]]
  BY [[        return false;]]
  CAUGHT_BY listeners.may-remove-themselves listeners.are-removed-wholly)

add_component_mutant(removal-skips-a-listener
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());
    for (const Entry& entry : told) {]]
  BY [[    for (std::size_t at = 0; at < entries_.size(); ++at) {
        const Entry entry = *std::next(entries_.begin(), static_cast<std::ptrdiff_t>(at));]]
  CAUGHT_BY listeners.are-not-skipped)

add_component_mutant(added-listener-told-at-once
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());
    for (const Entry& entry : told) {]]
  BY [[    for (const Entry& entry : entries_) {]]
  CAUGHT_BY listeners.added-hear-from-next-on listeners.replaced-wait-for-next)

add_component_mutant(told-when-released
  SOURCE ListenerList.cpp
  REPLACE [[    for (const Entry& entry : entries_)
        entry->store(nullptr);]]
  BY [[    entries_.clear();]]
  CAUGHT_BY listeners.may-release)

add_component_mutant(nested-event-is-lost
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  BY [[    static int depth = 0;
    const struct Depth {
        Depth() { ++depth; }
        ~Depth() { --depth; }
    } open;
    if (depth > 1) return;
    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  CAUGHT_BY listeners.are-told-of-nested-events listeners.may-start-from-the-end)

add_component_mutant(end-keeps-materials
  SOURCE AutoTrim.cpp
  REPLACE [[    callBacks.notify(*this, taskEventFinished, &payload);]]
  BY [[    const std::vector<Ref<IDmBaseMedia>> kept = materials;
    callBacks.notify(*this, taskEventFinished, &payload);
    materials = kept;]]
  CAUGHT_BY listeners.may-clear-at-the-end)

add_component_mutant(start-behind-stop-fails-once
  SOURCE RunDriver.cpp
  REPLACE [[    cancelled.exchange(0);]]
  BY [[    if (cancelled.load() != 0) {
        cancelled.exchange(0);
        return statusFailed;
    }]]
  CAUGHT_BY listeners.may-start-again stop.allows-another-run stop.cancels-no-later-run)

add_component_mutant(events-keep-a-reference
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  BY [[    const std::vector<Entry> told(entries_.begin(), entries_.end());
    sender.addRef();]]
  CAUGHT_BY listeners.may-release listeners.may-release-as-last release.may-come-inside-the-end)

add_component_mutant(removed-listener-is-told-so
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    callBacks.remove(*callBack);]]
  BY [[    callBack->onTaskEvent(this, taskEventCategory, taskEventStopped, nullptr);
    callBacks.remove(*callBack);]]
  FAILED_BY listeners.may-die-once-removed)
