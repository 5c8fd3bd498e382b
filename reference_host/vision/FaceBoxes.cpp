#include "reference_host/vision/FaceBoxes.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "host/results.h"

namespace reference_host::vision {
namespace {

/// Two faces side by side, cheek to cheek, overlap by less; two finds of one face by more.
constexpr double sameFaceOverlap = 0.3;

double area(const Box& box) {
    return box.width * box.height;
}

std::optional<Box> common(const Box& a, const Box& b) {
    const double left = std::max(a.x, b.x);
    const double top = std::max(a.y, b.y);
    const double right = std::min(a.x + a.width, b.x + b.width);
    const double bottom = std::min(a.y + a.height, b.y + b.height);
    if (!(left < right && top < bottom)) return std::nullopt;
    return Box{left, top, right - left, bottom - top};
}

bool comesBefore(const Box& a, const Box& b) {
    return std::tuple(-area(a), a.y, a.x) < std::tuple(-area(b), b.y, b.x);
}

}  // namespace

double overlap(const Box& a, const Box& b) {
    const std::optional<Box> both = common(a, b);
    if (!both) return 0;
    return area(*both) / (area(a) + area(b) - area(*both));
}

std::vector<Find> withoutDuplicates(std::vector<Find> finds) {
    std::sort(finds.begin(), finds.end(), [](const Find& a, const Find& b) {
        if (a.score != b.score) return a.score > b.score;
        return comesBefore(a.box, b.box);
    });
    std::vector<Find> faces;
    for (const Find& find : finds) {
        const bool known = std::any_of(faces.begin(), faces.end(), [&find](const Find& face) {
            return overlap(face.box, find.box) > sameFaceOverlap;
        });
        if (!known) faces.push_back(find);
    }
    return faces;
}

std::vector<KOR::KorRect> faceRects(const std::vector<Find>& finds, int widthPx, int heightPx) {
    const Box picture{0, 0, static_cast<double>(widthPx), static_cast<double>(heightPx)};
    std::vector<Box> boxes;
    for (const Find& find : finds) {
        if (const std::optional<Box> visible = common(find.box, picture)) boxes.push_back(*visible);
    }
    std::sort(boxes.begin(), boxes.end(), comesBefore);
    if (boxes.size() > KOR::maxFacesPerFrame) boxes.resize(KOR::maxFacesPerFrame);

    std::vector<KOR::KorRect> rects;
    for (const Box& box : boxes) {
        rects.push_back({box.x / picture.width, box.y / picture.height, box.width / picture.width,
                         box.height / picture.height});
    }
    return rects;
}

}  // namespace reference_host::vision
