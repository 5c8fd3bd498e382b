#include <cstring>
#include <limits>
#include <new>

#include <gtest/gtest.h>

#include "host/lists.h"
#include "tests/reference_host/Holder.h"

namespace reference_host_tests {
namespace {

/// Counts the deaths of the object that it observes.
struct DeathCounter final : KOR::IDmDestroyObserver {
    void objectDestroyed() override { ++deaths; }
    int deaths = 0;
};

TEST(Lists, NewListIsEmpty) {
    EXPECT_EQ(hold(createKORIntList())->count(), 0);
    EXPECT_EQ(hold(createKORLonglongList())->count(), 0);
    EXPECT_EQ(hold(createKORVoidPtrList())->count(), 0);
    EXPECT_EQ(hold(createKORAutoVoidPtrList())->count(), 0);
}

TEST(Lists, GivesElementsInOrderOfAppending) {
    const auto list = hold(createKORLonglongList());
    EXPECT_EQ(list->append(std::numeric_limits<std::int64_t>::min()), KOR::statusOk);
    EXPECT_EQ(list->append(7), KOR::statusOk);
    EXPECT_EQ(list->count(), 2);
    EXPECT_EQ(list->at(0), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(list->at(1), 7);
}

TEST(Lists, IndexOutsideGivesNull) {
    const auto numbers = hold(createKORIntList());
    numbers->append(5);
    EXPECT_EQ(numbers->at(-1), 0);
    EXPECT_EQ(numbers->at(1), 0);
    int borrowed = 0;
    const auto pointers = hold(createKORVoidPtrList());
    pointers->append(&borrowed);
    EXPECT_EQ(pointers->at(0), &borrowed);
    EXPECT_EQ(pointers->at(std::numeric_limits<std::int64_t>::min()), nullptr);
    EXPECT_EQ(pointers->at(1), nullptr);
}

TEST(Lists, OwningListFreesItsElements) {
    const auto list = hold(createKORAutoVoidPtrList());
    // The leak checker of the sanitizer build judges.
    for (int i = 0; i < 3; ++i)
        list->append(std::memset(::operator new(72), i, 72));
    list->append(nullptr);
    EXPECT_EQ(list->count(), 4);
}

TEST(Lists, BorrowingListLeavesItsElementsAlone) {
    int element = 42;
    hold(createKORVoidPtrList())->append(&element);
    EXPECT_EQ(element, 42);
}

TEST(Lists, LastReleaseDestroysOnce) {
    DeathCounter counter;
    KOR::IKORIntList* list = createKORIntList();
    list->setDestroyObserver(&counter);
    EXPECT_EQ(list->getDestroyObserver(), &counter);
    EXPECT_EQ(list->addRef(), 2U);
    EXPECT_EQ(list->refCount(), 2U);
    EXPECT_EQ(list->release(), 1U);
    EXPECT_EQ(counter.deaths, 0);
    EXPECT_EQ(list->release(), 0U);
    EXPECT_EQ(counter.deaths, 1);
}

TEST(Lists, KnowsItsBaseInterfaceOnly) {
    const auto list = hold(createKORIntList());
    EXPECT_EQ(list->queryInterface("IDmBaseObj"), static_cast<KOR::IDmBaseObj*>(list.get()));
    EXPECT_EQ(list->queryInterface("IDmBaseMedia"), nullptr);
    EXPECT_EQ(list->queryInterface(nullptr), nullptr);
}

}  // namespace
}  // namespace reference_host_tests
