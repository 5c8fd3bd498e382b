// Runs a component over any host: materials, results, failures and the order of events are what the
// bytes say. Everything that shows must be as the model of the component has it, and nothing left.

#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/component/ModelledRun.h"
#include "tests/fuzz/RestoreRig.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string difference = fake_host::differenceInRun(data, size);
    fuzz::require(difference.empty(), difference.c_str());
    return 0;
}
