#pragma once

#include <memory>

namespace reference_host_tests {

/// Gives a counted object's reference back at the end of its scope.
struct Release {
    template <typename Object>
    void operator()(Object* object) const {
        object->release();
    }
};

template <typename Object>
using Holder = std::unique_ptr<Object, Release>;

/// Takes over the one reference that a factory gives.
template <typename Object>
Holder<Object> hold(Object* object) {
    return Holder<Object>(object);
}

}  // namespace reference_host_tests
