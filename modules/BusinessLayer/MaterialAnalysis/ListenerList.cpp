#include "modules/BusinessLayer/MaterialAnalysis/ListenerList.h"

#include <vector>

namespace KOR {

ListenerList::~ListenerList() {
    for (const Entry& entry : entries_)
        entry->store(nullptr);
}

void ListenerList::add(IKorCallBack& listener) {
    entries_.push_back(std::make_shared<std::atomic<IKorCallBack*>>(&listener));
}

void ListenerList::remove(const IKorCallBack& listener) {
    entries_.remove_if([&listener](const Entry& entry) {
        if (entry->load() != &listener) return false;
        entry->store(nullptr);
        return true;
    });
}

void ListenerList::notify(IDmBaseObj& sender, std::uint32_t event, void* payload) const {
    const std::vector<Entry> told(entries_.begin(), entries_.end());
    for (const Entry& entry : told) {
        IKorCallBack* const listener = entry->load();
        if (listener != nullptr) listener->onTaskEvent(&sender, taskEventCategory, event, payload);
    }
}

}  // namespace KOR
