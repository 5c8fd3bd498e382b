#include "modules/BusinessLayer/MaterialAnalysis/NestedStart.h"

namespace KOR {

namespace {

/// The innermost mark of this thread, whoever owns it.
thread_local NestedStart* top = nullptr;

}  // namespace

NestedStart::NestedStart(const void* owner, std::int32_t materialIndex)
    : owner_(owner),
      previous_(top),
      outer_(innermost(owner)),
      level_(outer_ == nullptr ? 1 : outer_->level_ + 1),
      materialIndex_(materialIndex) {
    top = this;
}

NestedStart::~NestedStart() {
    top = previous_;
}

NestedStart* NestedStart::innermost(const void* owner) {
    NestedStart* mark = top;
    while (mark != nullptr && mark->owner_ != owner)
        mark = mark->previous_;
    return mark;
}

void NestedStart::moved(const void* owner, std::int32_t materialIndex) {
    for (NestedStart* mark = innermost(owner); mark != nullptr; mark = mark->outer_) {
        mark->materialIndex_ = materialIndex;
    }
}

void NestedStart::forgetFinishes(const void* owner) {
    for (NestedStart* mark = innermost(owner); mark != nullptr; mark = mark->outer_) {
        mark->finishes_ = 0;
    }
}

void NestedStart::ownerDestroyed(const void* owner) {
    for (NestedStart* mark = innermost(owner); mark != nullptr; mark = mark->outer_) {
        mark->owner_ = nullptr;
    }
}

bool NestedStart::takeFinish() {
    if (owner_ == nullptr || finishes_ == 0) return false;
    finishes_ -= 1;
    return true;
}

}  // namespace KOR
