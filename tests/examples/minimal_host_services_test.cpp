#include <limits>

#include <gtest/gtest.h>

#include "host/files.h"
#include "host/geometry.h"
#include "host/lists.h"
#include "host/logger.h"
#include "tests/examples/MinimalHost.h"
#include "tests/examples/PlainFiles.h"

namespace minimal_host_tests {
namespace {

TEST(MinimalServices, ListsGiveNothingOutsideTheirEnds) {
    const auto list = hold(HOST(createKORIntList)());
    EXPECT_EQ(list->append(7), KOR::statusOk);
    EXPECT_EQ(list->append(8), KOR::statusOk);
    EXPECT_EQ(list->count(), 2);
    EXPECT_EQ(list->at(1), 8);
    EXPECT_EQ(list->at(2), 0);
    EXPECT_EQ(list->at(-1), 0);
    const auto pointers = hold(HOST(createKORVoidPtrList)());
    EXPECT_EQ(pointers->at(0), nullptr);
    EXPECT_EQ(list->queryInterface("IDmBaseObj"), list.get());
}

TEST(MinimalServices, OwningListFreesItsElements) {
    const auto list = hold(HOST(createKORAutoVoidPtrList)());
    list->append(::operator new(16));  // a leak or a second freeing is the sanitizer's to find
    EXPECT_EQ(list->count(), 1);
}

TEST(MinimalServices, ReferencesAreCountedUpToTheLast) {
    auto* const list = HOST(createKORLonglongList)();
    EXPECT_EQ(list->refCount(), 1U);
    EXPECT_EQ(list->addRef(), 2U);
    EXPECT_EQ(list->release(), 1U);
    EXPECT_EQ(list->release(), 0U);
}

TEST(MinimalServices, HasNoLog) {
    EXPECT_EQ(HOST(loggerWrapper)(0), nullptr);
}

/// The host's functions by their mangled names: they are C++ functions of a library that this
/// program does not link.
template <typename Function>
Function* cxx(const char* name) {
    return reinterpret_cast<Function*>(hostSymbol(name));
}

TEST(MinimalServices, PointsOnAnEdgeAreInside) {
    const auto isInside = cxx<std::int32_t(const KOR::KorPoint&, const KOR::KorRect&)>(
        "_ZN3KOR11pointInRectERKNS_8KorPointERKNS_7KorRectE");
    const KOR::KorRect rect{0.25, 0.5, 0.5, 0.25};
    EXPECT_EQ(isInside({0.25, 0.5}, rect), 1);
    EXPECT_EQ(isInside({0.75, 0.75}, rect), 1);
    EXPECT_EQ(isInside({0.76, 0.75}, rect), 0);
    EXPECT_EQ(isInside({0.5, 0.49}, rect), 0);
    EXPECT_EQ(isInside({std::numeric_limits<double>::quiet_NaN(), 0.6}, rect), 0);
    const auto centre =
        cxx<KOR::KorPoint(const KOR::KorRect&)>("_ZN3KOR11centerPointERKNS_7KorRectE")(rect);
    EXPECT_EQ(centre.x, 0.5);
    EXPECT_EQ(centre.y, 0.625);
}

TEST(MinimalServices, SplitKeepsEmptyParts) {
    const auto split = cxx<std::vector<std::string>(const std::string&, char)>(
        "_ZN3KOR10StringUtil5splitERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEc");
    EXPECT_EQ(split("a,,b", ','), (std::vector<std::string>{"a", "", "b"}));
    EXPECT_EQ(split("", ','), std::vector<std::string>{""});
    EXPECT_EQ(HOST(kor_strlen)("four"), 4U);
    EXPECT_EQ(HOST(kor_strlen)(nullptr), 0U);
}

}  // namespace
}  // namespace minimal_host_tests
