#pragma once

#include <memory>

namespace autotrim {

/// Gives a counted reference back.
struct GiveBack {
    template <typename Object>
    void operator()(Object* object) const {
        object->release();
    }
};

/// One counted reference on an object of the host or the component. Made from a pointer, it takes
/// over the reference that came with it.
template <typename Object>
using Owned = std::unique_ptr<Object, GiveBack>;

}  // namespace autotrim
