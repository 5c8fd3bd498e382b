#pragma once

#include <memory>

#include "autotrim/Options.h"
#include "autotrim/ProgressText.h"

namespace autotrim {

/// Shows on the standard error how far a run is.
class ProgressDisplay {
public:
    virtual ~ProgressDisplay() = default;

    /// Shows which file is being opened, before the run.
    virtual void showOpening(const Progress& progress) = 0;

    /// Shows where the run stands.
    virtual void show(const Progress& progress) = 0;

    /// Takes away what would be in the way of other text.
    virtual void clear() = 0;
};

/// Makes the display of a style; the automatic one is a bar where the standard error is a terminal
/// that can redraw a line.
std::unique_ptr<ProgressDisplay> makeProgressDisplay(ProgressStyle style);

}  // namespace autotrim
