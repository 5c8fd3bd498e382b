#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace autotrim {

/// Kinds of analysis (KOR::AnalysisKind) in the order in which they run on a material.
using Kinds = std::vector<std::int32_t>;

/// Reads numbers that are joined by single commas, such as "4,3". Throws std::invalid_argument,
/// which says what is wrong, for anything else.
Kinds parseKinds(std::string_view text);

/// Returns why a run over `kinds` can give no records or does not end, in one line; empty when the
/// list is good.
///
/// Records need keyframes inside scenes: those come from kind 6, or from a kind 3 that follows a
/// kind 4, and they are collected only after a list of at least two kinds. Faces (1, 7), entropy
/// (5, 7) and scores are measured on these keyframes, so none of these kinds may stand before them;
/// neither may a kind 3 that has no scenes yet.
std::string whyUnusable(const Kinds& kinds);

}  // namespace autotrim
