#pragma once

#include <cstddef>
#include <cstdint>

namespace KOR {

/// A value of one of several types: a parameter that is set, or a piece of media information.
///
/// Who writes a value sets the type; the component reads the payload that the operation calls for
/// and never looks at the type. A parameter may be given as a shorter record with the same first 16
/// bytes.
struct KorValue {
    enum Type : std::uint32_t { none = 0, int32 = 1, int64 = 2, real = 3, text = 4 };

    Type type;
    std::uint32_t reserved;
    union {
        std::int32_t asInt32;
        std::int64_t asInt64;
        double asReal;
        char asText[1024];  ///< UTF-8, zero-terminated
    };
};

static_assert(sizeof(KorValue) == 1032, "the size is part of the contract");
static_assert(offsetof(KorValue, asInt64) == 8, "the payload starts at byte 8");

}  // namespace KOR
