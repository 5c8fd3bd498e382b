#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>

#include "host/tasks.h"

namespace KOR {

/// The listeners of the component, told of events in the order in which they were added.
///
/// A listener may, while it is told, add and remove listeners, cause further events, or end the
/// list itself: a removed one is not called any more, an added one hears from the next event on.
/// Once the last listener has been called a notification touches the list no more, so another
/// thread that this listener woke may change or end it at once.
class ListenerList {
public:
    ListenerList() = default;

    /// Nobody is called any more, not even by a notification that is under way.
    ~ListenerList();

    ListenerList(const ListenerList&) = delete;
    ListenerList& operator=(const ListenerList&) = delete;

    /// Adds a listener at the end. Not owned.
    void add(IKorCallBack& listener);

    /// Removes every entry of `listener`.
    void remove(const IKorCallBack& listener);

    /// Tells everyone of an event of taskEventCategory. The list may be gone when this returns.
    void notify(IDmBaseObj& sender, std::uint32_t event, void* payload) const;

private:
    /// Shared with the notifications under way; null once it is removed.
    using Entry = std::shared_ptr<std::atomic<IKorCallBack*>>;

    std::list<Entry> entries_;
};

}  // namespace KOR
