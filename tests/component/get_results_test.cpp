#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/FakeLists.h"
#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using GetResults = ComponentTest;

std::vector<KOR::MaterialAnalysisResult> copiesIn(KOR::IKORVoidPtrList& list) {
    std::vector<KOR::MaterialAnalysisResult> copies;
    for (std::int64_t i = 0; i < list.count(); ++i) {
        std::memcpy(&copies.emplace_back(), list.at(i), sizeof(KOR::MaterialAnalysisResult));
    }
    return copies;
}

/// Gives the two references of every copy back.
void giveBack(const std::vector<KOR::MaterialAnalysisResult>& copies) {
    for (const auto& copy : copies) {
        copy.media->release();
        copy.media->release();
    }
}

TEST_F(GetResults, NeedsAList) {
    EXPECT_EQ(component().getResults(nullptr), KOR::statusFailed);
}

TEST_F(GetResults, GivesNothingBeforeARun) {
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    EXPECT_EQ(component().getResults(list.get()), KOR::statusOk);
    EXPECT_EQ(list->count(), 0);
}

TEST_F(GetResults, CopiesEveryFieldInOrder) {
    FakeMedia& first = insert(video("short.mp4", second));
    FakeMedia& other = insert(photo("photo.jpg"));
    component().start();
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    EXPECT_EQ(component().getResults(list.get()), KOR::statusOk);
    const auto copies = copiesIn(*list);
    ASSERT_EQ(copies.size(), 2U);
    EXPECT_EQ(copies[0].score, 1.0);
    EXPECT_EQ(copies[0].begin, 0);
    EXPECT_EQ(copies[0].end, second);
    EXPECT_EQ(copies[0].posOfMaxScore, second / 2);
    EXPECT_EQ(copies[0].media, static_cast<KOR::IDmBaseObj*>(&first));
    EXPECT_EQ(copies[0].faceRectOfPhoto.x, 0.0);
    EXPECT_EQ(copies[0].faceRectOfPhoto.y, 0.0);
    EXPECT_EQ(copies[0].faceRectOfPhoto.width, 0.0);
    EXPECT_EQ(copies[0].faceRectOfPhoto.height, 0.0);
    EXPECT_EQ(copies[1].media, static_cast<KOR::IDmBaseObj*>(&other));
    giveBack(copies);
}

TEST_F(GetResults, LeavesTwoReferencesForEachCopy) {
    FakeMedia& material = insert(photo("photo.jpg"));
    component().start();
    const std::uint32_t before = material.refCount();
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    component().getResults(list.get());
    EXPECT_EQ(material.refCount(), before + 2);
    giveBack(copiesIn(*list));
}

TEST_F(GetResults, CopiesOutliveTheComponent) {
    FakeMedia& material = insert(photo("photo.jpg"));
    component().start();
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    component().getResults(list.get());
    releaseComponent();
    EXPECT_EQ(material.refCount(), 3U);
    giveBack(copiesIn(*list));
}

TEST_F(GetResults, AppendsToWhatTheListHolds) {
    insert(photo("photo.jpg"));
    component().start();
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    component().getResults(list.get());
    component().getResults(list.get());
    ASSERT_EQ(list->count(), 2);
    EXPECT_NE(list->at(0), list->at(1));
    giveBack(copiesIn(*list));
}

TEST_F(GetResults, CopyThatTheListRefusesIsNotLeaked) {
    FakeMedia& material = insert(photo("photo.jpg"));
    component().start();
    const std::uint32_t before = material.refCount();
    host().faults.failAppends(Product::owningList);
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    component().getResults(list.get());
    EXPECT_EQ(list->count(), 0);
    EXPECT_EQ(material.refCount(), before);
}

}  // namespace
}  // namespace fake_host
