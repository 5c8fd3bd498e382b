#pragma once

#include <stdexcept>

namespace reference_host::media {

/// Why a file cannot be used, in one line without its name. Stays inside the host: at its borders
/// it becomes an answer or an event.
class MediaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace reference_host::media
