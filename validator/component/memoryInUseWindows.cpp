#include "validator/component/memoryInUse.h"

namespace validator {

std::optional<std::size_t> memoryInUse() {
    return std::nullopt;
}

}  // namespace validator
