# Faults in keeping and handing out records.

add_component_mutant(records-one-reference
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        result->media->addRef();
    }]]
  BY [[    }]]
  CAUGHT_BY records.leave-two-references)

add_component_mutant(records-not-copied
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        OwnedResult copy = makeResult(*result->media);
        *copy = *result;
        if (list->append(copy.get()) != statusOk) return statusFailed;
        copy.release();]]
  BY [[        if (list->append(result.get()) != statusOk) return statusFailed;
        result->media->addRef();]]
  CAUGHT_BY records.are-copies)

add_component_mutant(records-without-rectangle
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        *copy = *result;]]
  BY [[        *copy = *result;
        copy->faceRectOfPhoto = {};]]
  CAUGHT_BY records.fields-in-order facerect.is-of-first-face)

add_component_mutant(records-begin-and-end-swapped
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        *copy = *result;]]
  BY [[        *copy = *result;
        std::swap(copy->begin, copy->end);]]
  CAUGHT_BY records.fields-in-order records.default-of-photo records.default-of-short-video)

add_component_mutant(records-latest-first
  SOURCE AutoTrim.cpp
  REPLACE [[        ofMaterial.push_back(result.get());
        analysisResults.push_back(std::move(result));]]
  BY [[        ofMaterial.push_back(result.get());
        analysisResults.insert(analysisResults.begin(), std::move(result));]]
  CAUGHT_BY records.stand-in-order-of-materials ranking.records-ascend-by-position)

add_component_mutant(records-only-beyond-the-lists-length
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    for (const OwnedResult& result : analysisResults) {
        OwnedResult copy]]
  BY [[    const auto known = static_cast<std::size_t>(list->count());
    for (std::size_t i = known; i < analysisResults.size(); ++i) {
        const OwnedResult& result = analysisResults[i];
        OwnedResult copy]]
  CAUGHT_BY records.are-appended)

add_component_mutant(records-null-list-taken
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    for (const OwnedResult& result]]
  BY [[    if (list == nullptr) return statusOk;
    for (const OwnedResult& result]]
  CAUGHT_BY records.null-list-is-refused)

add_component_mutant(records-none-is-failure
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    for (const OwnedResult& result]]
  BY [[    if (list == nullptr || analysisResults.empty()) return statusFailed;
    for (const OwnedResult& result]]
  CAUGHT_BY records.are-none-at-first)

add_component_mutant(records-lost-to-refusing-list
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        if (list->append(copy.get()) != statusOk) return statusFailed;]]
  BY [[        if (list->append(copy.get()) != statusOk) {
            analysisResults.clear();
            return statusFailed;
        }]]
  CAUGHT_BY records.survive-refusing-list)

add_component_mutant(records-material-kept-by-the-dead
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    NestedStart::ownerDestroyed(this);]]
  BY [[    NestedStart::ownerDestroyed(this);
    for (const Ref<IDmBaseMedia>& media : materials)
        media->addRef();]]
  CAUGHT_BY records.outlive-component)

add_component_mutant(records-gone-with-removed-material
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    materials.erase(materials.begin() + index);]]
  BY [[    materials.erase(materials.begin() + index);
    analysisResults.clear();]]
  CAUGHT_BY records.outlive-removed-material)

add_component_mutant(records-not-cleared
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    analysisResults.clear();
    return statusOk;]]
  BY [[    return statusOk;]]
  CAUGHT_BY records.are-cleared-with-materials)

add_component_mutant(records-kept-by-start
  SOURCE RunDriver.cpp
  REPLACE [[    analysisResults.clear();
    return onTaskFinished();]]
  BY [[    return onTaskFinished();]]
  CAUGHT_BY records.are-forgotten-by-start)

add_component_mutant(records-default-without-score
  SOURCE AutoTrim.cpp
  REPLACE [[    result->score = 1.0;
]]
  BY [[]]
  CAUGHT_BY records.default-of-photo records.default-of-short-video)

add_component_mutant(records-middle-rounded
  SOURCE AutoTrim.cpp
  REPLACE [[static_cast<std::int64_t>(static_cast<double>(result->end) * 0.5)]]
  BY [[(result->end + 1) / 2]]
  CAUGHT_BY records.middle-is-truncated records.middle-is-computed-as-double)

add_component_mutant(records-photo-without-task-only
  SOURCE RunDriver.cpp
  REPLACE [[    addDefaultResult(1);
    const std::int32_t index = photoNeedAnalysis == 0 ? noTask : photoTaskIndex(analysisKinds);]]
  BY [[    const std::int32_t index = photoNeedAnalysis == 0 ? noTask : photoTaskIndex(analysisKinds);
    if (index == noTask) addDefaultResult(1);]]
  CAUGHT_BY records.default-of-photo-comes-first)

add_component_mutant(records-of-lists-that-stay
  SOURCE PictureIntake.cpp
  REPLACE [[        const Ref<IKORVoidPtrList> found = resultsOf(*task, analysisTypeEntropy);]]
  BY [[        const Ref<IKORVoidPtrList> found = resultsOf(*task, analysisTypeEntropy);
        if (found) found->addRef();]]
  CAUGHT_BY records.lists-are-released)

add_component_mutant(records-photo-of-own-duration
  SOURCE AutoTrim.cpp
  REPLACE [[result->end = mediaDuration(media)]]
  BY [[result->end = media->getDuration()]]
  CAUGHT_BY records.photo-without-length-lasts-a-tick)

add_component_mutant(records-are-not-given
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    for (const OwnedResult& result]]
  BY [[    if (list == nullptr) return statusFailed;
    if (list->count() >= 0) return statusOk;
    for (const OwnedResult& result]]
  FAILED_BY records.are-copies records.fields-in-order records.outlive-component
    records.outlive-removed-material)

add_component_mutant(records-read-back-from-copies
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        *copy = *result;]]
  BY [[        static std::map<const void*, const MaterialAnalysisResult*> given;
        const MaterialAnalysisResult*& last = given[result.get()];
        *copy = last == nullptr ? *result : *last;
        last = copy.get();]]
  FAILED_BY records.are-copies)
