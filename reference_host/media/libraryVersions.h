#pragma once

#include <string>

namespace reference_host::media {

/// Returns the libraries in use that files are read by, with their versions, in one line.
std::string libraryVersions();

}  // namespace reference_host::media
