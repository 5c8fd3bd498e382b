#pragma once

#include <cstddef>
#include <cstring>

#include "host/value.h"

namespace KOR {

/// Reads the payload of a value, and no byte behind it: the record may be a shorter one.
template <typename Payload>
Payload payloadOf(const KorValue* value) {
    Payload payload;
    const auto* const record = reinterpret_cast<const char*>(value);
    std::memcpy(&payload, record + offsetof(KorValue, asInt64), sizeof payload);
    return payload;
}

}  // namespace KOR
