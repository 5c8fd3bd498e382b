#pragma once

#include <memory>

namespace validator {

struct GiveBack {
    template <typename Object>
    void operator()(Object* object) const {
        object->release();
    }
};

/// One reference on an object of the contract, given back at the end of the scope.
template <typename Object>
using Held = std::unique_ptr<Object, GiveBack>;

}  // namespace validator
