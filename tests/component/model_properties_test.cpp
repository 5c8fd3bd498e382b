#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/component/ModelledRun.h"

namespace fake_host {
namespace {

/// Enough bytes for a whole case, each with any value from the first case on.
std::vector<std::uint8_t> anyBytes() {
    const auto size = *rc::gen::inRange<std::size_t>(0, 500);
    return *rc::gen::resize(rc::kNominalSize, rc::gen::container<std::vector<std::uint8_t>>(
                                                  size, rc::gen::arbitrary<std::uint8_t>()));
}

RC_GTEST_PROP(RunProperty, GoesAsItsModelSays, ()) {
    const std::vector<std::uint8_t> bytes = anyBytes();
    const std::string difference = differenceInRun(bytes.data(), bytes.size());
    if (!difference.empty()) RC_LOG() << difference << std::endl;
    RC_ASSERT(difference.empty());
}

}  // namespace
}  // namespace fake_host
