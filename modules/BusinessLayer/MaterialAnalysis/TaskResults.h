#pragma once

#include "host/lists.h"
#include "host/tasks.h"
#include "modules/BusinessLayer/MaterialAnalysis/Ref.h"

namespace KOR {

/// Asks a finished task for its results of one kind. Null where the host gives no list; the task is
/// asked all the same.
inline Ref<IKORVoidPtrList> resultsOf(IBsMediaAnalysisTask& task, MediaAnalysisType kind) {
    auto list = Ref<IKORVoidPtrList>::adopt(createKORAutoVoidPtrList());
    task.getResultList(kind, 0, list.get(), 0);
    return list;
}

}  // namespace KOR
