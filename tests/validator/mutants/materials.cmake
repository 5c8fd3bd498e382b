# Faults of inserting and removing materials.

add_component_mutant(null-list-is-inserted
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        IDmBaseMedia* const media]]
  BY [[    if (list == nullptr) return statusOk;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        IDmBaseMedia* const media]]
  CAUGHT_BY materials.null-list-is-not-inserted)

add_component_mutant(empty-list-is-refused
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        IDmBaseMedia* const media]]
  BY [[    if (list == nullptr || list->count() == 0) return statusFailed;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        IDmBaseMedia* const media]]
  CAUGHT_BY materials.empty-list-inserts-nothing)

add_component_mutant(position-is-the-end
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[std::clamp<std::int64_t>(position + i, 0, end)]]
  BY [[std::clamp<std::int64_t>(end, 0, end)]]
  CAUGHT_BY
    materials.inserts-at-position
    materials.inserts-in-order
    materials.strangers-index-counts)

add_component_mutant(each-to-the-position
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[std::clamp<std::int64_t>(position + i, 0, end)]]
  BY [[std::clamp<std::int64_t>(position, 0, end)]]
  CAUGHT_BY materials.inserts-in-order)

add_component_mutant(stranger-ends-insertion
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        if (media == nullptr) continue;]]
  BY [[        if (media == nullptr) break;]]
  CAUGHT_BY materials.stranger-is-skipped materials.strangers-index-counts)

add_component_mutant(stranger-leaves-no-gap
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        if (media == nullptr) continue;]]
  BY [[        if (media == nullptr) {
            --position;
            continue;
        }]]
  CAUGHT_BY materials.strangers-index-counts)

add_component_mutant(insertion-takes-two-references
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        materials.insert(materials.begin() + index]]
  BY [[        media->addRef();
        materials.insert(materials.begin() + index]]
  CAUGHT_BY
    materials.insert-takes-one-reference
    materials.same-material-twice
    materials.clear-releases
    counting.end-releases-materials)

add_component_mutant(same-material-once
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        if (media == nullptr) continue;]]
  BY [[        if (media == nullptr) continue;
        const bool isThere = std::any_of(materials.begin(), materials.end(), [&](const auto& each) {
            return each.get() == media;
        });
        if (isThere) continue;]]
  CAUGHT_BY materials.same-material-twice)

add_component_mutant(inserted-list-is-kept
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        IDmBaseMedia* const media]]
  BY [[    if (list == nullptr) return statusFailed;
    list->addRef();
    for (std::int64_t i = 0; i < list->count(); ++i) {
        IDmBaseMedia* const media]]
  CAUGHT_BY materials.lists-stay-the-callers)

add_component_mutant(removal-looks-at-materials-first
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    if (materials.empty()) return statusOk;]]
  BY [[    if (materials.empty()) return statusOk;
    if (list == nullptr) return statusFailed;]]
  CAUGHT_BY materials.null-list-removes-nothing)

add_component_mutant(empty-list-removes-all
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    if (materials.empty()) return statusOk;]]
  BY [[    if (list == nullptr) return statusFailed;
    if (materials.empty()) return statusOk;
    if (list->count() == 0) materials.clear();]]
  CAUGHT_BY materials.empty-list-removes-nothing)

add_component_mutant(nothing-to-remove-fails
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (list == nullptr) return statusFailed;
    if (materials.empty()) return statusOk;]]
  BY [[    if (list == nullptr) return statusFailed;
    if (materials.empty()) return statusFailed;]]
  CAUGHT_BY materials.nothing-to-remove)

add_component_mutant(listed-anywhere-is-removed
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[            if (media != nullptr && media == materials[k].get()) {]]
  BY [[            bool isListed = media == materials[k].get();
            for (std::int64_t i = 0; i < list->count(); ++i)
                isListed = isListed || baseMediaOf(list->at(i)) == materials[k].get();
            if (isListed) {]]
  CAUGHT_BY materials.leaves-other-indices materials.goes-on-behind-removed)

add_component_mutant(removal-by-name
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[            if (media != nullptr && media == materials[k].get()) {]]
  BY [[            if (std::string_view(media->getFileName()) == materials[k]->getFileName()) {]]
  CAUGHT_BY materials.leaves-equal-names)

add_component_mutant(others-are-removed
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[            if (media != nullptr && media == materials[k].get()) {]]
  BY [[            if (media != nullptr && media != materials[k].get()) {]]
  CAUGHT_BY
    materials.removes-at-equal-index
    materials.leaves-other-indices
    materials.removal-releases)

add_component_mutant(removal-from-the-back
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        for (std::size_t k = 0; k < materials.size(); ++k) {]]
  BY [[        for (std::size_t k = materials.size(); k-- > 0;) {]]
  CAUGHT_BY materials.goes-on-behind-removed materials.asks-for-each-index)

add_component_mutant(one-pass
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    const std::int64_t passes = list->count();]]
  BY [[    const std::int64_t passes = std::min<std::int64_t>(list->count(), 1);]]
  CAUGHT_BY materials.makes-a-pass-for-each-element materials.asks-for-each-index)

add_component_mutant(removal-asks-again
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[                materials.erase(materials.begin() + static_cast<std::ptrdiff_t>(k));]]
  BY [[                materials.erase(materials.begin() + static_cast<std::ptrdiff_t>(k));
                --k;]]
  CAUGHT_BY materials.asks-for-what-is-left)

add_component_mutant(removal-keeps-reference
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[                materials.erase(materials.begin() + static_cast<std::ptrdiff_t>(k));]]
  BY [[                materials[k]->addRef();
                materials.erase(materials.begin() + static_cast<std::ptrdiff_t>(k));]]
  CAUGHT_BY materials.removal-releases)

add_component_mutant(index-keeps-reference
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (index < 0 || static_cast<std::size_t>(index) >= materials.size()) return statusFailed;]]
  BY [[    if (index < 0 || static_cast<std::size_t>(index) >= materials.size()) return statusFailed;
    materials[static_cast<std::size_t>(index)]->addRef();]]
  CAUGHT_BY materials.removes-at-index)

add_component_mutant(any-index-works
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (index < 0 || static_cast<std::size_t>(index) >= materials.size()) return statusFailed;]]
  BY [[    if (index < 0 || static_cast<std::size_t>(index) >= materials.size()) return statusOk;]]
  CAUGHT_BY materials.refuses-other-indices)

add_component_mutant(clearing-keeps-results
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    materials.clear();
    analysisResults.clear();
    return statusOk;]]
  BY [[    materials.clear();
    return statusOk;]]
  CAUGHT_BY materials.clear-ends-results)

add_component_mutant(clearing-keeps-materials
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    materials.clear();
    analysisResults.clear();
    return statusOk;]]
  BY [[    analysisResults.clear();
    return statusOk;]]
  CAUGHT_BY materials.clear-releases materials.inserts-after-clear)

add_component_mutant(clearing-nothing-fails
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    materials.clear();
    analysisResults.clear();
    return statusOk;]]
  BY [[    if (materials.empty()) return statusFailed;
    materials.clear();
    analysisResults.clear();
    return statusOk;]]
  CAUGHT_BY materials.clears-nothing)

add_component_mutant(removal-ends-results
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (index < 0 || static_cast<std::size_t>(index) >= materials.size()) return statusFailed;]]
  BY [[    if (index < 0 || static_cast<std::size_t>(index) >= materials.size()) return statusFailed;
    analysisResults.clear();]]
  CAUGHT_BY materials.removal-leaves-results counting.end-releases-results)

add_component_mutant(removal-passes-as-many-as-materials
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    const std::int64_t passes = list->count();]]
  BY [[    const auto all = static_cast<std::int64_t>(materials.size());
    const std::int64_t passes = std::min(list->count(), all);]]
  CAUGHT_BY materials.asks-for-each-index)
