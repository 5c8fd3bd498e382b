#pragma once

#include "autotrim/ComponentLibrary.h"
#include "autotrim/Options.h"

namespace autotrim {

/// Sets a component of `library` up for a run by `options`. Throws std::runtime_error when it does
/// not take that.
void configure(KOR::IKorMaterialAnalysis& component, const ComponentLibrary& library,
               const Options& options);

}  // namespace autotrim
