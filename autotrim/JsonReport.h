#pragma once

#include <string>

#include "autotrim/Report.h"

namespace autotrim {

/// Returns `report` as a JSON text of schema "autotrim/1", ending with a newline. Parts of a file
/// name that are not UTF-8 become U+FFFD; a number that is not finite becomes null.
std::string toJson(const Report& report);

}  // namespace autotrim
