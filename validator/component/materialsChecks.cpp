#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "fake_host/FakeLists.h"
#include "validator/component/groups.h"

namespace validator {
namespace {

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

FakeMedia& photoCalled(Stage& stage, const std::string& name) {
    return stage.make(photo(name));
}

KOR::Status insert(Stage& stage, const std::vector<FakeMedia*>& materials, std::int32_t position) {
    return stage.component().insertMaterials(materialList(materials).get(), position);
}

/// The names of the materials in their order: a run gives each photo one record.
void expectOrder(Stage& stage, const Lines& names) {
    stage.component().start();
    Lines found;
    for (const KOR::MaterialAnalysisResult& record : stage.results())
        found.emplace_back(record.media->getFileName());
    expectLines("the materials", found, names);
}

/// Three photos a, b and c in a component.
struct Three {
    explicit Three(Stage& stage)
        : a(photoCalled(stage, "a")), b(photoCalled(stage, "b")), c(photoCalled(stage, "c")) {
        expectEqual("insertMaterials()", insert(stage, {&a, &b, &c}, 0), KOR::statusOk);
    }

    FakeMedia& a;
    FakeMedia& b;
    FakeMedia& c;
};

/// Removes by a list and returns the indices that it was asked for.
std::vector<std::int64_t> remove(Stage& stage, const std::vector<FakeMedia*>& materials) {
    const auto list = materialList(materials);
    expectEqual("removeMaterials()", stage.component().removeMaterials(list.get()), KOR::statusOk);
    return static_cast<const FakeList<void*>*>(list.get())->asked();
}

void nullListIsNotInserted(Stage& stage) {
    const Three three(stage);
    expectEqual("insertMaterials(null, 0)", stage.component().insertMaterials(nullptr, 0),
                KOR::statusFailed);
    expectOrder(stage, {"a", "b", "c"});
}

void emptyListInsertsNothing(Stage& stage) {
    const Three three(stage);
    expectEqual("insertMaterials() of an empty list", insert(stage, {}, 1), KOR::statusOk);
    expectOrder(stage, {"a", "b", "c"});
}

void insertsAtPosition(Stage& stage) {
    const Three three(stage);
    insert(stage, {&photoCalled(stage, "end")}, 3);
    insert(stage, {&photoCalled(stage, "second")}, 1);
    insert(stage, {&photoCalled(stage, "begin")}, 0);
    expectOrder(stage, {"begin", "a", "second", "b", "c", "end"});
}

void insertsInOrder(Stage& stage) {
    const Three three(stage);
    insert(stage, {&photoCalled(stage, "x"), &photoCalled(stage, "y"), &photoCalled(stage, "z")},
           1);
    expectOrder(stage, {"a", "x", "y", "z", "b", "c"});
}

/// A list of two photos with an object between them that is no material.
void insertAroundStranger(Stage& stage, std::int32_t position) {
    const Owned<KOR::IKORIntList> stranger(createKORIntList());
    const auto list = materialList({&photoCalled(stage, "x")});
    list->append(static_cast<KOR::IDmBaseObj*>(stranger.get()));
    FakeMedia& last = photoCalled(stage, "y");
    list->append(asElement(last));
    expectEqual("insertMaterials()", stage.component().insertMaterials(list.get(), position),
                KOR::statusOk);
    expectEqual("references on the stranger", stranger->refCount(), 1);
}

void strangerIsSkipped(Stage& stage) {
    FakeMedia& first = photoCalled(stage, "first");
    insert(stage, {&first, &first, &first}, 0);
    insertAroundStranger(stage, 1);
    expectEqual("references on a material", first.refCount(), 4);
    stage.component().start();
    expectEqual("materials", stage.results().size(), 5U);
}

void strangersIndexCounts(Stage& stage) {
    const Three three(stage);
    insertAroundStranger(stage, 0);
    expectOrder(stage, {"x", "a", "y", "b", "c"});
}

void insertTakesOneReference(Stage& stage) {
    const Three three(stage);
    for (const FakeMedia* const media : {&three.a, &three.b, &three.c})
        expectEqual("references on a material", media->refCount(), 2);
}

void sameMaterialTwice(Stage& stage) {
    FakeMedia& media = photoCalled(stage, "a");
    insert(stage, {&media, &media}, 0);
    expectEqual("references on the material", media.refCount(), 3);
    expectOrder(stage, {"a", "a"});
}

void listsStayTheCallers(Stage& stage) {
    const auto list = materialList({&photoCalled(stage, "a")});
    stage.component().insertMaterials(list.get(), 0);
    expectEqual("references on the list, inserted", list->refCount(), 1);
    expectEqual("elements of the list, inserted", list->count(), 1);
    stage.component().removeMaterials(list.get());
    expectEqual("references on the list, removed", list->refCount(), 1);
    expectEqual("elements of the list, removed", list->count(), 1);
}

void nullListRemovesNothing(Stage& stage) {
    expectEqual("removeMaterials(null) without materials",
                stage.component().removeMaterials(nullptr), KOR::statusFailed);
    const Three three(stage);
    expectEqual("removeMaterials(null)", stage.component().removeMaterials(nullptr),
                KOR::statusFailed);
    expectOrder(stage, {"a", "b", "c"});
}

void emptyListRemovesNothing(Stage& stage) {
    const Three three(stage);
    expectEqual("indices asked for", remove(stage, {}), {});
    expectOrder(stage, {"a", "b", "c"});
}

void nothingToRemove(Stage& stage) {
    expectEqual("indices asked for", remove(stage, {&photoCalled(stage, "a")}), {});
}

void removesAtEqualIndex(Stage& stage) {
    const Three three(stage);
    FakeMedia& other = photoCalled(stage, "other");
    remove(stage, {&other, &three.b, &other});
    expectOrder(stage, {"a", "c"});
}

void leavesOtherIndices(Stage& stage) {
    const Three three(stage);
    remove(stage, {&three.b, &three.c, &three.a});
    expectOrder(stage, {"a", "b", "c"});
}

void leavesEqualNames(Stage& stage) {
    const Three three(stage);
    remove(stage, {&photoCalled(stage, "a"), &three.b, &three.c});
    expectOrder(stage, {"a", "c"});
}

void goesOnBehindRemoved(Stage& stage) {
    // Each removal moves the later materials to the front, where the list names others.
    const Three three(stage);
    remove(stage, {&three.a, &three.b, &three.c});
    expectOrder(stage, {"b", "c"});
}

void makesAPassForEachElement(Stage& stage) {
    FakeMedia& media = photoCalled(stage, "a");
    insert(stage, {&media, &media, &media, &photoCalled(stage, "b")}, 0);
    FakeMedia& other = photoCalled(stage, "other");
    remove(stage, {&media, &other, &other, &other});
    expectOrder(stage, {"b"});
}

void asksForEachIndex(Stage& stage) {
    const Three three(stage);
    FakeMedia& other = photoCalled(stage, "other");
    expectEqual("indices asked for", remove(stage, {&other, &other, &other}),
                {0, 1, 2, 0, 1, 2, 0, 1, 2});
    expectEqual("indices asked for in a longer list",
                remove(stage, {&other, &other, &other, &other}),
                {0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2});
}

void asksForWhatIsLeft(Stage& stage) {
    const Three three(stage);
    FakeMedia& other = photoCalled(stage, "other");
    expectEqual("indices asked for", remove(stage, {&three.a, &other, &other}), {0, 1, 0, 1, 0, 1});
}

void removalReleases(Stage& stage) {
    const Three three(stage);
    remove(stage, {&three.a, &three.a, &three.a});
    expectEqual("references on the removed one", three.a.refCount(), 1);
    expectEqual("references on another one", three.b.refCount(), 2);
}

void removesAtIndex(Stage& stage) {
    const Three three(stage);
    expectEqual("removeMaterialAt(1)", stage.component().removeMaterialAt(1), KOR::statusOk);
    expectEqual("references on the removed one", three.b.refCount(), 1);
    expectOrder(stage, {"a", "c"});
    expectEqual("removeMaterialAt(1)", stage.component().removeMaterialAt(1), KOR::statusOk);
    expectEqual("removeMaterialAt(0)", stage.component().removeMaterialAt(0), KOR::statusOk);
    expectOrder(stage, {});
}

void refusesOtherIndices(Stage& stage) {
    expectEqual("removeMaterialAt(0) without materials", stage.component().removeMaterialAt(0),
                KOR::statusFailed);
    const Three three(stage);
    for (const std::int32_t index : {-1, 3, 4, most, least}) {
        expectEqual("removeMaterialAt(" + shown(index) + ")",
                    stage.component().removeMaterialAt(index), KOR::statusFailed);
    }
    expectOrder(stage, {"a", "b", "c"});
}

void clearReleases(Stage& stage) {
    const Three three(stage);
    expectEqual("clearMaterials()", stage.component().clearMaterials(), KOR::statusOk);
    for (const FakeMedia* const media : {&three.a, &three.b, &three.c})
        expectEqual("references on a material", media->refCount(), 1);
    expectOrder(stage, {});
}

void clearEndsResults(Stage& stage) {
    const Three three(stage);
    stage.component().start();
    stage.component().clearMaterials();
    expectEqual("results", stage.results().size(), 0U);
    for (const FakeMedia* const media : {&three.a, &three.b, &three.c})
        expectEqual("references on a material", media->refCount(), 1);
}

void clearsNothing(Stage& stage) {
    for (int i = 0; i < 2; ++i)
        expectEqual("clearMaterials()", stage.component().clearMaterials(), KOR::statusOk);
}

void insertsAfterClear(Stage& stage) {
    const Three three(stage);
    stage.component().clearMaterials();
    insert(stage, {&three.c, &three.a}, 0);
    expectOrder(stage, {"c", "a"});
}

void removalLeavesResults(Stage& stage) {
    const Three three(stage);
    stage.component().start();
    stage.component().removeMaterialAt(0);
    remove(stage, {&three.b, &three.c});
    expectEqual("results", stage.results().size(), 3U);
    expectEqual("references on the removed one", three.a.refCount(), 2);
}

}  // namespace

const std::vector<ComponentCheck> materialsChecks = {
    {"materials.null-list-is-not-inserted", "Inserting a null list fails and changes nothing.",
     nullListIsNotInserted},
    {"materials.empty-list-inserts-nothing", "Inserting an empty list returns 0.",
     emptyListInsertsNothing},
    {"materials.inserts-at-position", "Materials are inserted at the position asked for.",
     insertsAtPosition},
    {"materials.inserts-in-order", "The materials of a list keep its order.", insertsInOrder},
    {"materials.stranger-is-skipped",
     "An element that does not answer to \"IDmBaseMedia\" is passed over and not held.",
     strangerIsSkipped},
    {"materials.strangers-index-counts",
     "What follows an element that was passed over goes where it would have gone behind it.",
     strangersIndexCounts},
    {"materials.insert-takes-one-reference", "Inserting takes one reference on each material.",
     insertTakesOneReference},
    {"materials.same-material-twice",
     "A material may be inserted twice, and is held and handled twice.", sameMaterialTwice},
    {"materials.lists-stay-the-callers",
     "The lists of an insertion and a removal stay the caller's as they are.", listsStayTheCallers},
    {"materials.null-list-removes-nothing", "Removing by a null list fails and changes nothing.",
     nullListRemovesNothing},
    {"materials.empty-list-removes-nothing", "Removing by an empty list returns 0.",
     emptyListRemovesNothing},
    {"materials.nothing-to-remove",
     "Removing from no materials returns 0 without a look at the list's elements.",
     nothingToRemove},
    {"materials.removes-at-equal-index",
     "A material is removed where the list has it at its own index.", removesAtEqualIndex},
    {"materials.leaves-other-indices", "A material is left where the list has it at another index.",
     leavesOtherIndices},
    {"materials.leaves-equal-names", "A removal goes by the object and not by its name.",
     leavesEqualNames},
    {"materials.goes-on-behind-removed",
     "Behind a removed material the comparison goes on with the next index.", goesOnBehindRemoved},
    {"materials.makes-a-pass-for-each-element",
     "A removal makes as many passes as the list has elements.", makesAPassForEachElement},
    {"materials.asks-for-each-index",
     "Each pass asks the list for every index below the number of materials.", asksForEachIndex},
    {"materials.asks-for-what-is-left",
     "A pass asks for no index that the removals before have put out of use.", asksForWhatIsLeft},
    {"materials.removal-releases", "A removal gives the reference back.", removalReleases},
    {"materials.removes-at-index",
     "removeMaterialAt removes the material at the index and gives its reference back.",
     removesAtIndex},
    {"materials.refuses-other-indices",
     "removeMaterialAt fails for an index without a material and changes nothing.",
     refusesOtherIndices},
    {"materials.clear-releases", "clearMaterials removes all materials and gives them back.",
     clearReleases},
    {"materials.clear-ends-results", "clearMaterials removes all results and what they hold.",
     clearEndsResults},
    {"materials.clears-nothing", "clearMaterials returns 0 where there is nothing.", clearsNothing},
    {"materials.inserts-after-clear", "Materials can be inserted again after clearMaterials.",
     insertsAfterClear},
    {"materials.removal-leaves-results", "Removing materials leaves the results of the last run.",
     removalLeavesResults},
};

}  // namespace validator
