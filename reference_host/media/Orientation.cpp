#include "reference_host/media/Orientation.h"

namespace reference_host::media {
namespace {

/// A direction in a picture, y downwards.
struct Step {
    std::int64_t x;
    std::int64_t y;
};

Step turned(Step step, int quarterTurns) {
    for (int i = 0; i < quarterTurns; ++i)
        step = {-step.y, step.x};
    return step;
}

std::int64_t alikeness(Step one, Step other) {
    return one.x * other.x + one.y * other.y;
}

}  // namespace

Orientation Orientation::ofExif(int value) {
    switch (value) {
        case 2:
            return {.isMirrored = true, .quarterTurns = 0};
        case 3:
            return {.isMirrored = false, .quarterTurns = 2};
        case 4:
            return {.isMirrored = true, .quarterTurns = 2};
        case 5:
            return {.isMirrored = true, .quarterTurns = 3};
        case 6:
            return {.isMirrored = false, .quarterTurns = 1};
        case 7:
            return {.isMirrored = true, .quarterTurns = 1};
        case 8:
            return {.isMirrored = false, .quarterTurns = 3};
        default:
            return {};
    }
}

Orientation Orientation::ofDisplayMatrix(const std::array<std::int32_t, 9>& matrix) {
    const Step right{matrix[0], matrix[1]};
    const Step down{matrix[3], matrix[4]};
    Orientation nearest;
    std::int64_t best = 0;
    for (const bool isMirrored : {false, true}) {
        for (int turns = 0; turns < 4; ++turns) {
            const std::int64_t score = alikeness(right, turned({isMirrored ? -1 : 1, 0}, turns)) +
                                       alikeness(down, turned({0, 1}, turns));
            if (score <= best) continue;
            best = score;
            nearest = {.isMirrored = isMirrored, .quarterTurns = turns};
        }
    }
    return nearest;
}

Place storedPlace(Place upright, Orientation orientation, int widthPx, int heightPx) {
    Place stored = upright;
    switch (orientation.quarterTurns) {
        case 1:
            stored = {upright.y, heightPx - 1 - upright.x};
            break;
        case 2:
            stored = {widthPx - 1 - upright.x, heightPx - 1 - upright.y};
            break;
        case 3:
            stored = {widthPx - 1 - upright.y, upright.x};
            break;
        default:
            break;
    }
    if (orientation.isMirrored) stored.x = widthPx - 1 - stored.x;
    return stored;
}

}  // namespace reference_host::media
