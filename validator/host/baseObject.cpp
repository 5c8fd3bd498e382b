#include "validator/host/baseObject.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <thread>

#include "validator/check/expect.h"
#include "validator/check/onThreads.h"
#include "validator/host/Observer.h"

namespace validator {

void expectCountsReferences(Held<KOR::IDmBaseObj> object) {
    expectEqual("refCount() of a new object", object->refCount(), 1);
    expectEqual("addRef()", object->addRef(), 2);
    expectEqual("a second addRef()", object->addRef(), 3);
    expectEqual("refCount()", object->refCount(), 3);
    expectEqual("release()", object->release(), 2);
    expectEqual("release()", object->release(), 1);
    expectEqual("refCount()", object->refCount(), 1);
    expectEqual("the last release()", object.release()->release(), 0);
}

void expectCountsOnThreads(Held<KOR::IDmBaseObj> object) {
    constexpr std::uint32_t times = 20000;
    // All are taken before one is given back: a lost one must not make up for another.
    onThreads([&](int) {
        for (std::uint32_t n = 0; n < times; ++n)
            object->addRef();
    });
    expectEqual("refCount() after as many references were taken on four threads",
                object->refCount(), 1 + threadCount * times);
    onThreads([&](int) {
        for (std::uint32_t n = 0; n < times; ++n)
            object->release();
    });
    expectEqual("refCount() after they were given back on four threads", object->refCount(), 1);
}

void expectKeepsObserver(Held<KOR::IDmBaseObj> object) {
    Observer first;
    Observer second;
    expectNull("getDestroyObserver() at first", object->getDestroyObserver());
    object->setDestroyObserver(&first);
    expectSame("getDestroyObserver()", object->getDestroyObserver(), &first);
    object->setDestroyObserver(&second);
    expectSame("getDestroyObserver() after another was set", object->getDestroyObserver(), &second);
    object->setDestroyObserver(nullptr);
    expectNull("getDestroyObserver() after null was set", object->getDestroyObserver());
}

void expectTellsObserverOnce(Held<KOR::IDmBaseObj> object) {
    Observer observer;
    object->setDestroyObserver(&observer);
    object->addRef();
    object->release();
    expectEqual("calls of objectDestroyed() before the last release", observer.times(), 0);
    object.reset();
    expectEqual("calls of objectDestroyed()", observer.times(), 1);
    expect(observer.thread() == std::this_thread::get_id(), "objectDestroyed()",
           "on the thread of the last release", "on another one");
}

void expectForgetsObserver(Held<KOR::IDmBaseObj> object) {
    Observer first;
    Observer second;
    object->setDestroyObserver(&first);
    object->setDestroyObserver(&second);
    object->setDestroyObserver(nullptr);
    object.reset();
    expectEqual("calls of the observers that were taken off", first.times() + second.times(), 0);
}

void expectInterfaces(Held<KOR::IDmBaseObj> object, const std::vector<const char*>& names) {
    for (const char* const name : names) {
        const std::string right = name;
        expectObject("queryInterface() of " + right, object->queryInterface(name));
        std::string other = right;
        std::transform(other.begin(), other.end(), other.begin(), [](unsigned char letter) {
            return static_cast<char>(std::tolower(letter));
        });
        for (const std::string& wrong :
             {other, right + "2", " " + right, right.substr(0, right.size() - 1)})
            expectNull("queryInterface() of " + wrong, object->queryInterface(wrong.c_str()));
    }
    for (const char* const name : {"", "KOR", "IUnknown"})
        expectNull("queryInterface() of " + shown(name), object->queryInterface(name));
    expectNull("queryInterface() of null", object->queryInterface(nullptr));
}

void expectQueryAddsNoReference(Held<KOR::IDmBaseObj> object,
                                const std::vector<const char*>& names) {
    for (const char* const name : names)
        object->queryInterface(name);
    expectEqual("refCount()", object->refCount(), 1);
}

}  // namespace validator
