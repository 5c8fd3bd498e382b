#include "modules/BusinessLayer/MaterialAnalysis/EntropyScore.h"

namespace KOR {

double entropyScore(double entropyBits) {
    constexpr double partOfTheHighest = 0.125;
    constexpr double weight = 0.1;
    return (entropyBits * partOfTheHighest) * weight;
}

}  // namespace KOR
