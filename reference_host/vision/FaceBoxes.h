#pragma once

#include <vector>

#include "host/geometry.h"

namespace reference_host::vision {

/// A rectangle of a picture in pixels; (x, y) is its upper left corner.
struct Box {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

/// A place where a detector takes something for a face.
struct Find {
    Box box;
    /// How sure the detector is; comparable between the finds of one detector only.
    double score = 0;
};

/// Returns the part of what two boxes cover together that both of them cover: 0 for boxes apart, 1
/// for equal ones.
double overlap(const Box& a, const Box& b);

/// Returns one find for each face, the surest first: of those that overlap, the surest.
std::vector<Find> withoutDuplicates(std::vector<Find> finds);

/// Returns the boxes of `finds` in fractions of a picture's sides, clipped to it, the largest first
/// (of equal ones the upper, then the left), at most KOR::maxFacesPerFrame. Boxes of which nothing
/// lies in the picture are left out.
std::vector<KOR::KorRect> faceRects(const std::vector<Find>& finds, int widthPx, int heightPx);

}  // namespace reference_host::vision
