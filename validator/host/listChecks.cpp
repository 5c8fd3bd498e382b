#include <array>
#include <atomic>
#include <limits>
#include <new>

#include "validator/host/BlockWatch.h"
#include "validator/host/baseObject.h"
#include "validator/host/groups.h"
#include "validator/host/onThreads.h"

namespace validator {
namespace {

/// Calls `action` with each kind of list in turn, as a new one.
template <typename Action>
void withEachList(const HostLibrary& host, Action action) {
    action(host.intList());
    action(host.longlongList());
    action(host.borrowingList());
    action(host.owningList());
}

constexpr std::array<std::int64_t, 6> outside = {
    -1, 3, std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(),
    // Inside, if only the lower half counted.
    std::int64_t{1} << 32, -(std::int64_t{1} << 32) + 1};

template <typename List, typename Element>
void expectNothingOutside(const List& list, Element nothing) {
    for (const std::int64_t index : outside)
        expectEqual("at() of " + shown(index) + " in a list of 3", list.at(index), nothing);
}

void giveNothingOutside(HostLibrary& host) {
    int a = 0;
    expectNothingOutside(*host.intList({7, 8, 9}), std::int32_t{0});
    expectNothingOutside(*host.longlongList({7, 8, 9}), std::int64_t{0});
    const auto pointers = host.borrowingList({&a, &a, &a});
    for (const std::int64_t index : outside)
        expectNull("at() of " + shown(index) + " in a list of 3", pointers->at(index));
}

template <typename List, typename Element>
void expectElements(const List& list, const std::vector<Element>& elements) {
    expectEqual("count()", list.count(), static_cast<std::int64_t>(elements.size()));
    for (std::size_t i = 0; i < elements.size(); ++i)
        expectEqual("at()", list.at(static_cast<std::int64_t>(i)), elements[i]);
}

void keepOrder(HostLibrary& host) {
    using Int = std::numeric_limits<std::int32_t>;
    using Longlong = std::numeric_limits<std::int64_t>;
    const std::vector<std::int32_t> ints = {3, Int::max(), -1, 0, Int::min(), 3};
    expectElements(*host.intList(ints), ints);
    const std::vector<std::int64_t> longlongs = {3, Longlong::max(), -1, 0, Longlong::min(), 3};
    expectElements(*host.longlongList(longlongs), longlongs);
    std::array<int, 3> places{};
    const std::vector<void*> pointers = {&places[2], &places[0], &places[1], &places[2]};
    const auto list = host.borrowingList(pointers);
    for (std::size_t i = 0; i < pointers.size(); ++i)
        expectSame("at()", list->at(static_cast<std::int64_t>(i)), pointers[i]);
}

void holdThousands(HostLibrary& host) {
    std::vector<std::int32_t> ints(100000);
    std::vector<std::int64_t> longlongs(ints.size());
    std::vector<void*> pointers(ints.size());
    for (std::size_t i = 0; i < ints.size(); ++i) {
        ints[i] = static_cast<std::int32_t>(i * 7);
        longlongs[i] = static_cast<std::int64_t>(i) << 33;
        pointers[i] = &ints[i];
    }
    expectElements(*host.intList(ints), ints);
    expectElements(*host.longlongList(longlongs), longlongs);
    expectElements(*host.borrowingList(pointers), pointers);
}

void keepNull(HostLibrary& host) {
    int a = 0;
    const auto list = host.borrowingList({nullptr, &a, nullptr});
    expectEqual("count()", list->count(), 3);
    expectNull("at(0)", list->at(0));
    expectSame("at(1)", list->at(1), &a);
    expectNull("at(2)", list->at(2));
}

void frees(HostLibrary& host) {
    const BlockWatch watch;
    std::vector<void*> blocks;
    for (int i = 0; i < 1000; ++i)
        blocks.push_back(::operator new(16));
    host.owningList(blocks).reset();
    for (const void* const block : blocks)
        expectEqual("how often an element was freed", watch.timesFreed(block), 1);
}

void keepsUntilTheEnd(HostLibrary& host) {
    const BlockWatch watch;
    void* const block = ::operator new(16);
    const auto list = host.owningList({block});
    list->addRef();
    list->release();
    list->at(0);
    list->count();
    expectEqual("how often an element of a list that lives was freed", watch.timesFreed(block), 0);
    expectSame("at(0)", list->at(0), block);
}

void freesNothing(HostLibrary& host) {
    const BlockWatch watch;
    std::vector<void*> blocks;
    for (int i = 0; i < 100; ++i)
        blocks.push_back(::operator new(16));
    host.borrowingList(blocks).reset();
    for (const void* const block : blocks)
        expectEqual("how often an element was freed", watch.timesFreed(block), 0);
}

void areSeparate(HostLibrary& host) {
    const auto first = host.intList({1});
    const auto second = host.intList();
    expect(first.get() != second.get(), "a second list", "another one", "the same");
    expectEqual("count() of the second list", second->count(), 0);
}

void areMadeOnThreads(HostLibrary& host) {
    std::atomic<int> wrong{0};
    onThreads(4, [&](std::size_t number) {
        const auto n = static_cast<std::int32_t>(number);
        for (int i = 0; i < 500; ++i) {
            const auto list = host.intList({n, n + 1});
            const auto owning = host.owningList({::operator new(8)});
            if (list->count() != 2 || list->at(1) != n + 1 || owning->count() != 1) ++wrong;
        }
    });
    expectEqual("lists with other elements than were appended", wrong.load(), 0);
}

}  // namespace

const std::vector<HostCheck> listChecks = {
    {"lists.are-empty-at-first", "A new list of each kind has no element.",
     [](HostLibrary& host) {
         withEachList(host, [](auto list) { expectEqual("count()", list->count(), 0); });
     }},
    {"lists.count-their-references",
     "A new list of each kind has one reference; addRef and release return the new count, the last "
     "one 0.",
     [](HostLibrary& host) {
         withEachList(host, [](auto list) { expectCountsReferences(asBase(std::move(list))); });
     }},
    {"lists.count-references-on-threads",
     "References on a list may be taken and given back on several threads at once.",
     [](HostLibrary& host) { expectCountsOnThreads(asBase(host.intList())); }},
    {"lists.keep-observer", "A list returns the destruction's observer that was set last.",
     [](HostLibrary& host) {
         withEachList(host, [](auto list) { expectKeepsObserver(asBase(std::move(list))); });
     }},
    {"lists.tell-observer-once",
     "A list tells its observer once, on the thread of the last release and not before.",
     [](HostLibrary& host) {
         withEachList(host, [](auto list) { expectTellsObserverOnce(asBase(std::move(list))); });
     }},
    {"lists.forget-observer", "An observer that was taken off a list or replaced is not told.",
     [](HostLibrary& host) {
         withEachList(host, [](auto list) { expectForgetsObserver(asBase(std::move(list))); });
     }},
    {"lists.are-asked-for-interfaces",
     "A list has the interface IDmBaseObj by exactly this name, and none by null or other names.",
     [](HostLibrary& host) {
         withEachList(host,
                      [](auto list) { expectInterfaces(asBase(std::move(list)), {"IDmBaseObj"}); });
     }},
    {"lists.keep-order",
     "Lists return each element as it was appended, in that order, equal ones and the extremes of "
     "their type included.",
     keepOrder},
    {"lists.give-nothing-outside",
     "An index outside a list, of whatever size, gives 0 or null, negative ones included.",
     giveNothingOutside},
    {"lists.hold-thousands", "A list holds a hundred thousand elements.", holdThousands},
    {"lists.keep-null", "A list of pointers keeps null like any other element.", keepNull},
    {"lists.owning-frees-elements",
     "A list of createKORAutoVoidPtrList gives each element to operator delete once when it dies.",
     frees},
    {"lists.owning-keeps-elements", "An owning list frees no element before its last release.",
     keepsUntilTheEnd},
    {"lists.borrowing-frees-nothing",
     "A list of createKORVoidPtrList never frees what its elements point to.", freesNothing},
    {"lists.are-separate", "Each call of a factory makes a list of its own.", areSeparate},
    {"lists.are-made-on-threads", "Lists may be made on several threads at once.",
     areMadeOnThreads},
};

}  // namespace validator
