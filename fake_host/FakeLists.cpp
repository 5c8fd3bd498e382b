#include "fake_host/FakeLists.h"

namespace {

template <typename Element>
KOR::IKORList<Element>* makeList(fake_host::Product kind) {
    if (fake_host::host().nextMakingFails(kind)) return nullptr;
    return new fake_host::FakeList<Element>(kind);
}

}  // namespace

KOR::IKORIntList* createKORIntList() {
    return makeList<std::int32_t>(fake_host::Product::intList);
}

KOR::IKORLonglongList* createKORLonglongList() {
    return makeList<std::int64_t>(fake_host::Product::longlongList);
}

KOR::IKORVoidPtrList* createKORVoidPtrList() {
    return makeList<void*>(fake_host::Product::pointerList);
}

KOR::IKORVoidPtrList* createKORAutoVoidPtrList() {
    if (fake_host::host().makeOwningList) return fake_host::host().makeOwningList();
    return makeList<void*>(fake_host::Product::owningList);
}
