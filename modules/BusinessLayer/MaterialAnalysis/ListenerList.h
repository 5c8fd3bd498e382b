#pragma once

#include <cstdint>
#include <memory>

#include "host/tasks.h"

namespace KOR {

/// The listeners of the component, told of events in the order in which they were added.
///
/// A listener may, while it is told, add and remove listeners, cause further events, or end the
/// list itself: a removed one is not called any more, an added one hears from the next event on.
class ListenerList {
public:
    ListenerList();

    /// Nobody is called any more, not even by a notification that is under way.
    ~ListenerList();

    ListenerList(const ListenerList&) = delete;
    ListenerList& operator=(const ListenerList&) = delete;

    /// Adds a listener at the end. Not owned.
    void add(IKorCallBack& listener);

    /// Removes every entry of `listener`.
    void remove(const IKorCallBack& listener);

    /// Tells everyone of an event of taskEventCategory. The list may be gone when this returns.
    void notify(IDmBaseObj& sender, std::uint32_t event, void* payload);

private:
    struct Entries;

    /// Shared with the notifications under way, which outlive the list when a listener ends it.
    std::shared_ptr<Entries> entries_;
};

}  // namespace KOR
