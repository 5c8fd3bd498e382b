#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "validator/component/Stage.h"

/// Runs that groups about scores and records look at.
namespace validator {

using Records = std::vector<KOR::MaterialAnalysisResult>;

/// Lets a check count in ticks: a video that lasts at all is analysed, and its scenes are kept
/// however short they are.
void countInTicks(Stage& stage);

/// Runs `kinds` on one material to the end and gives the records of the run. The journal begins
/// with the run.
Records recordsOf(Stage& stage, const MediaSpec& spec, const std::vector<std::int32_t>& kinds);

/// The one record that there has to be.
KOR::MaterialAnalysisResult only(const Records& records);

/// The score that a scene gives to each of its keyframes.
double durationScoreOf(std::int64_t begin, std::int64_t end, std::int64_t materialDuration);

/// What an entropy adds to a score.
double entropyScoreOf(double entropy);

/// What the lines of the log say that come from one function, in order, each line feed shown as
/// "\n". Empties the journal.
Lines loggedBy(Stage& stage, const std::string& function);

}  // namespace validator
