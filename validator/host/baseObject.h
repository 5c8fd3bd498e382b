#pragma once

#include <vector>

#include "host/IDmBaseObj.h"
#include "validator/host/Held.h"

/// What holds of every object, whatever it is; `object` has one reference, and is given back.
namespace validator {

void expectCountsReferences(Held<KOR::IDmBaseObj> object);
void expectCountsOnThreads(Held<KOR::IDmBaseObj> object);
void expectKeepsObserver(Held<KOR::IDmBaseObj> object);
void expectTellsObserverOnce(Held<KOR::IDmBaseObj> object);
void expectForgetsObserver(Held<KOR::IDmBaseObj> object);

/// The object has exactly the interfaces of `names` among those that there are.
void expectInterfaces(Held<KOR::IDmBaseObj> object, const std::vector<const char*>& names);

/// Asking for an interface of `names` adds no reference.
void expectQueryAddsNoReference(Held<KOR::IDmBaseObj> object,
                                const std::vector<const char*>& names);

/// Gives an object's reference over to one of the functions above.
template <typename Object>
Held<KOR::IDmBaseObj> asBase(Held<Object> object) {
    return Held<KOR::IDmBaseObj>(object.release());
}

}  // namespace validator
