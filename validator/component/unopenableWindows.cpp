#include "validator/component/unopenable.h"

namespace validator {

bool makeUnopenable(const std::filesystem::path& /*path*/) {
    return false;
}

}  // namespace validator
