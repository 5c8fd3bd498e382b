#pragma once

#include <cstdint>
#include <stop_token>
#include <vector>

#include "autotrim/ComponentLibrary.h"
#include "autotrim/JointProgress.h"
#include "autotrim/Materials.h"
#include "autotrim/Options.h"
#include "autotrim/Outcome.h"
#include "autotrim/Owned.h"
#include "autotrim/ProgressDisplay.h"
#include "autotrim/Shares.h"

namespace autotrim {

/// Runs over all materials side by side, each by a component of its own and over a share of them
/// that is fixed before.
class Jobs {
public:
    /// Makes at most `count` components, which is 1 or more, and hands them their shares. What is
    /// given has to outlive them. Throws std::runtime_error when a component does not take its
    /// part.
    Jobs(const ComponentLibrary& library, const Options& options, Materials& materials,
         std::size_t count);

    /// Runs them all to their ends, which `interruption` brings about before they are done, and
    /// gives their results to the materials. Throws std::runtime_error when a component does not
    /// give them. To be called once.
    void run(const std::stop_token& interruption, ProgressDisplay& display);

    /// Whether one was interrupted before its end.
    bool interrupted() const;

private:
    struct Job {
        Share share;
        Owned<KOR::IKorMaterialAnalysis> component;
        RunEnd end = RunEnd::complete;
    };

    JointProgress progressOn(ProgressDisplay& display) const;
    void runAll(const std::stop_token& interruption, JointProgress& progress);
    void runOne(std::size_t index, JointProgress& progress);

    const Options& options_;
    Materials& materials_;
    std::vector<std::int64_t> work_;  ///< of each material
    std::vector<Job> jobs_;
    std::stop_source ending_;  ///< has all runs end early
};

}  // namespace autotrim
