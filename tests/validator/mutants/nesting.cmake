# Faults with tasks that finish inside their own start.

add_component_mutant(nesting-not-counted
  SOURCE NestedStart.cpp
  REPLACE [[outer_ == nullptr ? 1 : outer_->level_ + 1]]
  BY [[1]]
  CAUGHT_BY nesting.bears-thousands-of-videos)

add_component_mutant(nested-finish-is-lost
  SOURCE NestedStart.cpp
  REPLACE [[    finishes_ -= 1;
    return true;]]
  BY [[    finishes_ -= 1;
    return false;]]
  CAUGHT_BY nesting.keeps-order nesting.logs-each-start nesting.bears-thousands-of-videos
    nesting.bears-a-task-that-takes-its-time)

add_component_mutant(finish-inside-start-is-lost
  SOURCE RunDriver.cpp
  REPLACE [[    if (around != nullptr && around->isBeyondLiteralLevels()) {
        around->rememberFinish();
        return;
    }]]
  BY [[    if (around != nullptr) return;]]
  CAUGHT_BY nesting.runs-to-the-end threads.run-side-by-side nesting.ends-by-release
    nesting.begins-next-run-at-the-end)

add_component_mutant(start-line-tells-its-own-material
  SOURCE NestedStart.cpp
  REPLACE [[        mark->materialIndex_ = materialIndex;]]
  BY [[        static_cast<void>(materialIndex);]]
  CAUGHT_BY nesting.logs-start-behind-it)

add_component_mutant(nested-finish-survives-start
  SOURCE NestedStart.cpp
  REPLACE [[        mark->finishes_ = 0;]]
  BY [[        static_cast<void>(mark);]]
  CAUGHT_BY nesting.forgets-finishes-of-cancelled-run)

add_component_mutant(nesting-of-all-components
  SOURCE NestedStart.cpp
  REPLACE [[    while (mark != nullptr && mark->owner_ != owner)
        mark = mark->previous_;
    return mark;]]
  BY [[    static_cast<void>(owner);
    return mark;]]
  CAUGHT_BY nesting.leaves-others-alone)

add_component_mutant(materials-selected-by-recursion
  SOURCE RunDriver.cpp
  REPLACE [[    while (IDmBaseMedia* const media = currentMaterial()) {
        if (isPhotoMaterial(media)) {
            if (selectPhotoTask()) return;
            continue;
        }]]
  BY [[    if (IDmBaseMedia* const media = currentMaterial()) {
        if (isPhotoMaterial(media)) {
            volatile char frame[256] = {};
            if (!selectPhotoTask()) selectMaterial();
            frame[0] = frame[1];
            return;
        }]]
  CAUGHT_BY nesting.bears-thousands-of-photos)
