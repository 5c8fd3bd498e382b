#pragma once

#include <cstdint>

#include "host/IDmBaseObj.h"
#include "host/status.h"

namespace KOR {

/// A growing list of values of one type. A list belongs to one thread at a time.
///
/// Its first six slots are those of IDmBaseObj, so `release` is operation 1 of every list, `count`
/// is 6, `at` is 7 and `append` is 8.
template <typename Element>
class IKORList : public IDmBaseObj {
public:
    /// 6. Returns the number of elements, as 64 bits.
    virtual std::int64_t count() const = 0;

    /// 7. Returns the element at `index`, counted from 0. An index outside the list, negative ones
    /// included, gives null (for numbers: 0).
    virtual Element at(std::int64_t index) const = 0;

    /// 8. Adds `element` at the end. statusFailed when it could not be added; the list is then as
    /// it was and has not taken the element over.
    virtual Status append(Element element) = 0;

protected:
    ~IKORList() = default;
};

using IKORIntList = IKORList<std::int32_t>;
using IKORLonglongList = IKORList<std::int64_t>;

/// A list of pointers. Which of its two factories made it decides who frees what they point to.
using IKORVoidPtrList = IKORList<void*>;

}  // namespace KOR

extern "C" {

/// Each factory makes an empty list with one reference, or gives null. Any thread.
KOR::IKORIntList* createKORIntList();
KOR::IKORLonglongList* createKORLonglongList();

/// Makes a list that only borrows: what its elements point to is never freed by the list.
///
/// Lists of materials are of this kind: each element is an `IDmBaseObj*` converted to `void*`. So
/// are lists of scene ranges: the pairs stay with the caller of
/// IBsMediaAnalysisTask::setSceneRanges, who frees them once the call has returned.
KOR::IKORVoidPtrList* createKORVoidPtrList();

/// Makes a list that owns: each element is one block obtained from `::operator new` that needs no
/// destructor, and is given to `::operator delete` when the list dies.
///
/// Lists that receive results are of this kind: the elements of getResultList, and the copies of
/// IKorMaterialAnalysis::getResults. (A result copy's two references on its media object are not
/// the list's: see there.)
KOR::IKORVoidPtrList* createKORAutoVoidPtrList();
}
