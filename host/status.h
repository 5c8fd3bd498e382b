#pragma once

#include <cstdint>

namespace KOR {

/// What every operation of the contract returns, unless its own comment says otherwise.
using Status = std::uint32_t;

/// The operation did what it says.
constexpr Status statusOk = 0;

/// The operation failed, is not supported, or was given a null pointer. There is no other code.
constexpr Status statusFailed = 1001;

/// Every position, duration and scene bound is a signed count of 100-nanosecond ticks.
constexpr std::int64_t ticksPerSecond = 10000000;

}  // namespace KOR
