#pragma once

#include <cstdint>

namespace reference_host::media {

/// How many frames were lost or incomplete, of how many.
struct Damage {
    std::int64_t damaged = 0;
    std::int64_t all = 0;
};

}  // namespace reference_host::media
