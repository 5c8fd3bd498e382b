#include "reference_host/tasks/analysePictures.h"

#include <algorithm>
#include <numeric>

#include "reference_host/media/PositionReader.h"
#include "reference_host/tasks/FaceDetectors.h"
#include "reference_host/vision/measures.h"

namespace reference_host {
namespace {

std::vector<std::int64_t> positionsOf(const AnalysisRequest& request) {
    if (request.footage->facts().isVideo) return request.positionsTicks;
    return {0};
}

/// Returns the indexes of `positions` in the order in which they follow each other in the footage.
std::vector<std::size_t> inFootageOrder(const std::vector<std::int64_t>& positions) {
    std::vector<std::size_t> order(positions.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return positions[left] < positions[right];
    });
    return order;
}

/// Makes room for what is wanted of each picture: as if nothing could be seen in any of them.
void makeRoom(const AnalysisRequest& request, const std::vector<std::int64_t>& positions,
              AnalysisResults& results) {
    for (const std::int64_t position : positions) {
        if (request.wantsFaces) {
            KOR::FaceDetectFrame& frame = results.faces.emplace_back();
            frame.pos = position;
        }
        if (request.wantsEntropy) results.entropies.push_back({position, 0.0});
        if (request.wantsBlur) results.blurs.push_back({position, 0.0});
    }
}

void takeFaces(const std::vector<KOR::KorRect>& faces, KOR::FaceDetectFrame& frame) {
    frame.faceCount = static_cast<std::int32_t>(faces.size());
    std::copy(faces.begin(), faces.end(), frame.faceRects);
}

}  // namespace

void analysePictures(const AnalysisRequest& request, const std::stop_token& stop,
                     ProgressMeter& progress, AnalysisResults& results) {
    const std::vector<std::int64_t> positions = positionsOf(request);
    makeRoom(request, positions, results);
    if (positions.empty()) return;

    Footage& footage = *request.footage;
    media::PositionReader reader(footage.file(), footage.facts(), stop);
    const auto detector = request.wantsFaces ? FaceDetectors::instance().borrow() : nullptr;
    vision::Picture picture;
    std::size_t done = 0;
    for (const std::size_t i : inFootageOrder(positions)) {
        if (stop.stop_requested()) return;
        if (reader.read(positions[i], picture)) {
            if (request.wantsFaces) takeFaces(detector->detect(picture), results.faces[i]);
            if (request.wantsEntropy) {
                results.entropies[i].entropy = vision::entropyBits(picture.luma);
            }
            if (request.wantsBlur) results.blurs[i].sharpness = vision::sharpness(picture);
        }
        progress.report(static_cast<std::int32_t>(++done * 100 / positions.size()));
    }
    if (request.wantsFaces) footage.noteFaces(results.faces);
}

}  // namespace reference_host
