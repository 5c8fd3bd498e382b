#include "validator/component/groups.h"

namespace validator {

const std::vector<ComponentCheck> identityChecks = {
    {"identity.fresh-object-has-one-reference",
     "A component fresh from the factory has one reference.",
     [](Stage& stage) { expectEqual("refCount()", stage.component().refCount(), 1); }},
    {"identity.last-release-gives-0", "Giving back the only reference returns 0.",
     [](Stage& stage) {
         stage.component();
         expectEqual("release()", stage.releaseComponent(), 0);
     }},
};

}  // namespace validator
