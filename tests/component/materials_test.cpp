#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/FakeLists.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using Media = std::vector<KOR::IDmBaseMedia*>;

class Materials : public ComponentTest {
protected:
    FakeMedia& a = make(photo("a.jpg"));
    FakeMedia& b = make(photo("b.jpg"));
    FakeMedia& c = make(photo("c.jpg"));

    void insertAt(const std::vector<FakeMedia*>& media, std::int32_t position) {
        ASSERT_EQ(component().insertMaterials(materialList(media).get(), position), KOR::statusOk);
    }

    /// Removes by an aligned list and returns the indices that the list was asked for.
    std::vector<std::int64_t> removeAligned(const std::vector<FakeMedia*>& media) {
        const auto list = materialList(media);
        EXPECT_EQ(component().removeMaterials(list.get()), KOR::statusOk);
        return static_cast<const FakeList<void*>*>(list.get())->asked();
    }
};

TEST_F(Materials, InsertTakesOneReferenceEach) {
    insertAt({&a, &b}, 0);
    EXPECT_EQ(probe().materials(), (Media{&a, &b}));
    EXPECT_EQ(a.refCount(), 2U);
    EXPECT_EQ(b.refCount(), 2U);
}

TEST_F(Materials, InsertGoesToThePositionAskedFor) {
    insertAt({&a, &b}, 0);
    insertAt({&c}, 1);
    EXPECT_EQ(probe().materials(), (Media{&a, &c, &b}));
}

TEST_F(Materials, InsertKeepsTheOrderOfTheList) {
    insertAt({&c}, 0);
    insertAt({&a, &b}, 0);
    EXPECT_EQ(probe().materials(), (Media{&a, &b, &c}));
}

TEST_F(Materials, InsertPassesOverStrangersButCountsThem) {
    insertAt({&a, &b}, 0);
    const Owned<KOR::IKORIntList> stranger(createKORIntList());
    const Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
    list->append(static_cast<KOR::IDmBaseObj*>(stranger.get()));
    list->append(asElement(c));
    EXPECT_EQ(component().insertMaterials(list.get(), 0), KOR::statusOk);
    EXPECT_EQ(probe().materials(), (Media{&a, &c, &b}));
    EXPECT_EQ(stranger->refCount(), 1U);
}

TEST_F(Materials, InsertPassesOverNullElements) {
    insertAt({nullptr, &a}, 0);
    EXPECT_EQ(probe().materials(), Media{&a});
}

TEST_F(Materials, InsertRefusesANullListOnly) {
    EXPECT_EQ(component().insertMaterials(nullptr, 0), KOR::statusFailed);
    EXPECT_EQ(component().insertMaterials(materialList({}).get(), 0), KOR::statusOk);
    EXPECT_TRUE(probe().materials().empty());
}

TEST_F(Materials, InsertClampsPositionsBeyondTheEnd) {
    insertAt({&a}, 5);
    insertAt({&b, &c}, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(probe().materials(), (Media{&a, &b, &c}));
}

TEST_F(Materials, InsertClampsNegativePositions) {
    insertAt({&a}, 0);
    insertAt({&b}, -1);
    insertAt({&c}, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(probe().materials(), (Media{&c, &b, &a}));
}

TEST_F(Materials, InsertMayHoldTheSameMaterialTwice) {
    insertAt({&a, &a}, 0);
    EXPECT_EQ(probe().materials(), (Media{&a, &a}));
    EXPECT_EQ(a.refCount(), 3U);
}

TEST_F(Materials, RemoveNeedsAList) {
    EXPECT_EQ(component().removeMaterials(nullptr), KOR::statusFailed);
}

TEST_F(Materials, RemoveWithNothingToDoSucceeds) {
    EXPECT_TRUE(removeAligned({&a}).empty());
    insertAt({&a}, 0);
    EXPECT_TRUE(removeAligned({}).empty());
    EXPECT_EQ(probe().materials(), Media{&a});
}

TEST_F(Materials, RemoveComparesEqualIndices) {
    insertAt({&a, &b}, 0);
    EXPECT_EQ(removeAligned({&b, &a}), (std::vector<std::int64_t>{0, 1, 0, 1}));
    EXPECT_EQ(probe().materials(), (Media{&a, &b}));
}

TEST_F(Materials, RemoveSkipsTheOneBehindARemovedOne) {
    insertAt({&a, &b}, 0);
    removeAligned({&a, &b});
    EXPECT_EQ(probe().materials(), Media{&b});
    EXPECT_EQ(a.refCount(), 1U);
}

TEST_F(Materials, RemoveMakesAsManyPassesAsElements) {
    insertAt({&a, &a, &a}, 0);
    // The first pass removes indices 0 and 1 of what stands there then, the second one the rest.
    EXPECT_EQ(removeAligned({&a, &a}), (std::vector<std::int64_t>{0, 1, 0}));
    EXPECT_TRUE(probe().materials().empty());
}

TEST_F(Materials, RemoveAsksBeyondAShorterList) {
    insertAt({&a, &b, &c}, 0);
    EXPECT_EQ(removeAligned({&a}), (std::vector<std::int64_t>{0, 1}));
    EXPECT_EQ(probe().materials(), (Media{&b, &c}));
}

TEST_F(Materials, RemoveAsksForEveryIndexOfTheMaterials) {
    insertAt({&a, &b, &c}, 0);
    EXPECT_EQ(removeAligned({&b}), (std::vector<std::int64_t>{0, 1, 2}));
    EXPECT_EQ(probe().materials(), (Media{&a, &b, &c}));
}

TEST_F(Materials, RemoveTakesNullForNoMatch) {
    insertAt({&a, &b}, 0);
    removeAligned({nullptr, &b});
    EXPECT_EQ(probe().materials(), Media{&a});
}

TEST_F(Materials, RemoveAtTakesOneOut) {
    insertAt({&a, &b, &c}, 0);
    EXPECT_EQ(component().removeMaterialAt(1), KOR::statusOk);
    EXPECT_EQ(probe().materials(), (Media{&a, &c}));
    EXPECT_EQ(b.refCount(), 1U);
}

TEST_F(Materials, RemoveAtOutsideChangesNothing) {
    insertAt({&a, &b}, 0);
    EXPECT_EQ(component().removeMaterialAt(-1), KOR::statusFailed);
    EXPECT_EQ(component().removeMaterialAt(2), KOR::statusFailed);
    EXPECT_EQ(component().removeMaterialAt(std::numeric_limits<std::int32_t>::min()),
              KOR::statusFailed);
    EXPECT_EQ(probe().materials(), (Media{&a, &b}));
}

TEST_F(Materials, ClearGivesBackMaterialsAndRecords) {
    insertAt({&a, &b}, 0);
    component().start();
    ASSERT_EQ(probe().results().size(), 2U);
    EXPECT_EQ(a.refCount(), 3U);
    EXPECT_EQ(component().clearMaterials(), KOR::statusOk);
    EXPECT_TRUE(probe().materials().empty());
    EXPECT_TRUE(probe().results().empty());
    EXPECT_EQ(a.refCount(), 1U);
    EXPECT_EQ(b.refCount(), 1U);
}

TEST_F(Materials, RemovingAMaterialKeepsItsRecords) {
    insertAt({&a}, 0);
    component().start();
    component().removeMaterialAt(0);
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].media, &a);
    EXPECT_EQ(a.refCount(), 2U);
}

}  // namespace
}  // namespace fake_host
