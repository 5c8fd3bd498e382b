#pragma once

namespace KOR {

/// Returns what the entropy of a picture, in bits, adds to its keyframe's score: 0.1 for the
/// highest, 8 bits, and less in proportion.
double entropyScore(double entropyBits);

}  // namespace KOR
