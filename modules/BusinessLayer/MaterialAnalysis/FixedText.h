#pragma once

#include <string>

namespace KOR {

/// Returns `value` as C's "%f" writes it in the "C" locale, whatever the process's locale is: fixed
/// notation, six digits after the point.
std::string fixedText(double value);

}  // namespace KOR
