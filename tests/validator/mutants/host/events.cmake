# Faults of how listeners are kept, and of what they are told.

add_host_mutant(listeners-from-the-last-on
  SOURCE Channel.h
  REPLACE [[        listeners_.push_back(listener);]]
  BY [[        listeners_.insert(listeners_.begin(), listener);]]
  CAUGHT_BY listeners.are-told-in-order)

add_host_mutant(listener-once-only
  SOURCE Channel.h
  REPLACE [[        listeners_.push_back(listener);]]
  BY [[        if (std::find(listeners_.begin(), listeners_.end(), listener) == listeners_.end())
            listeners_.push_back(listener);]]
  CAUGHT_BY listeners.added-twice-are-told-twice)

add_host_mutant(null-listener-called
  SOURCE Task.cpp
  REPLACE [[        if (listener != nullptr) channel_->add(listener);]]
  BY [[        channel_->add(listener == nullptr ? reinterpret_cast<KOR::IKorCallBack*>(8) : listener);]]
  CAUGHT_BY listeners.null-is-ignored)

add_host_mutant(one-entry-removed
  SOURCE Channel.h
  REPLACE [[        std::replace(listeners_.begin(), listeners_.end(), listener, noListener);]]
  BY [[        const auto place = std::find(listeners_.begin(), listeners_.end(), listener);
        if (place != listeners_.end()) *place = noListener;]]
  CAUGHT_BY listeners.removed-are-not-told)

add_host_mutant(last-listener-removed
  SOURCE Channel.h
  REPLACE [[        std::replace(listeners_.begin(), listeners_.end(), listener, noListener);]]
  BY [[        if (listener != noListener) listeners_.back() = noListener;]]
  CAUGHT_BY listeners.strangers-may-be-removed)

add_host_mutant(added-hear-the-same-event
  SOURCE Channel.h
  REPLACE [[i < count && sender_ != nullptr; ++i) {]]
  BY [[i < std::max(count, listeners_.size()) && sender_ != nullptr; ++i) {]]
  CAUGHT_BY listeners.added-inside-hear-the-next)

add_host_mutant(removed-hear-the-same-event
  SOURCE Channel.h
  REPLACE [[        const std::size_t count = listeners_.size();  // those added now hear the next event
        for (std::size_t i = 0; i < count && sender_ != nullptr; ++i) {
            KOR::IKorCallBack* const listener = listeners_[i];]]
  BY [[        const auto all = listeners_;
        for (std::size_t i = 0; i < all.size() && sender_ != nullptr; ++i) {
            KOR::IKorCallBack* const listener = all[i];]]
  CAUGHT_BY listeners.removed-inside-are-not-called)

add_host_mutant(removed-make-others-move-up
  SOURCE Channel.h
  REPLACE [[        const std::size_t count = listeners_.size();  // those added now hear the next event
        for (std::size_t i = 0; i < count && sender_ != nullptr; ++i) {]]
  BY [[        for (std::size_t i = 0; i < listeners_.size() && sender_ != nullptr; ++i) {
            std::erase(listeners_, noListener);
            if (i >= listeners_.size()) break;]]
  CAUGHT_BY listeners.may-remove-themselves)

add_host_mutant(listeners-go-with-their-run
  SOURCE Channel.h
  REPLACE [[        std::erase(listeners_, noListener);
        speaker_ = {};]]
  BY [[        if (event == KOR::taskEventFinished) listeners_.clear();
        speaker_ = {};]]
  CAUGHT_BY listeners.stay-for-next-runs)

add_host_mutant(finished-said-as-stopped
  SOURCE Channel.h
  REPLACE [[        speak(lock, KOR::taskEventFinished, {100, 0, ""});]]
  BY [[        speak(lock, KOR::taskEventStopped, {100, 0, ""});]]
  CAUGHT_BY events.end-with-finished)

add_host_mutant(progress-of-101-percent
  SOURCE analyse.cpp
  REPLACE [[        report_(100);]]
  BY [[        report_(101);]]
  CAUGHT_BY events.tell-progress)

add_host_mutant(no-sender
  SOURCE Channel.h
  REPLACE [[listener->onTaskEvent(sender, KOR::taskEventCategory,]]
  BY [[listener->onTaskEvent((static_cast<void>(sender), nullptr), KOR::taskEventCategory,]]
  CAUGHT_BY events.name-their-sender events.add-no-reference)

add_host_mutant(another-category
  SOURCE Channel.h
  REPLACE [[KOR::taskEventCategory,]]
  BY [[KOR::taskEventCategory + 1,]]
  CAUGHT_BY events.name-their-sender)

add_host_mutant(unknown-event-before-the-end
  SOURCE Channel.h
  REPLACE [[        speak(lock, KOR::taskEventFinished, {100, 0, ""});]]
  BY [[        speak(lock, static_cast<KOR::TaskEvent>(5), {100, 0, ""});
        speak(lock, KOR::taskEventFinished, {100, 0, ""});]]
  CAUGHT_BY events.are-known events.end-with-finished)

add_host_mutant(finished-with-a-reason
  SOURCE Channel.h
  REPLACE [[KOR::taskEventFinished, {100, 0, ""});]]
  BY [[KOR::taskEventFinished, {100, 0, "done"});]]
  CAUGHT_BY events.give-no-reason)

add_host_mutant(event-adds-a-reference
  SOURCE Channel.h
  REPLACE [[            lock.unlock();
            listener->onTaskEvent(]]
  BY [[            lock.unlock();
            sender->addRef();
            listener->onTaskEvent(]]
  CAUGHT_BY events.add-no-reference)

add_host_mutant(source-tells-of-progress
  SOURCE Task.cpp
  REPLACE [[        channel_->forgetResults();]]
  BY [[        channel_->forgetResults();
        channel_->send({}, KOR::taskEventProgress, {});]]
  CAUGHT_BY events.come-from-runs-only)

add_host_mutant(paused-for-ever
  SOURCE Task.cpp
  REPLACE [[    KOR::Status pause() override { return KOR::statusFailed; }]]
  BY [[    KOR::Status pause() override { return KOR::statusOk; }]]
  CAUGHT_BY events.survive-a-pause)
