#include "reference_host/tasks/analysePictures.h"

#include <algorithm>
#include <numeric>
#include <utility>

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

/// Fills in what can be seen in the `index`th picture, wherever there is room for it. `detector` is
/// null where no faces are wanted.
void take(const vision::Picture& picture, std::size_t index, vision::FaceDetector* detector,
          AnalysisResults& results) {
    if (detector != nullptr) {
        const std::vector<KOR::KorRect> faces = detector->detect(picture);
        KOR::FaceDetectFrame& frame = results.faces[index];
        frame.faceCount = static_cast<std::int32_t>(faces.size());
        std::copy(faces.begin(), faces.end(), frame.faceRects);
    }
    if (!results.entropies.empty()) {
        results.entropies[index].entropy = vision::entropyBits(picture.luma);
    }
    if (!results.blurs.empty()) results.blurs[index].sharpness = vision::sharpness(picture);
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
    Footage::FaceCounts faceCounts;
    std::size_t done = 0;
    for (const std::size_t i : inFootageOrder(positions)) {
        if (stop.stop_requested()) return;
        if (reader.read(positions[i], picture)) {
            take(picture, i, detector.get(), results);
            if (detector) faceCounts[positions[i]] = results.faces[i].faceCount;
        }
        progress.report(static_cast<std::int32_t>(++done * 100 / positions.size()));
    }
    if (detector) footage.noteFaces(std::move(faceCounts));
}

}  // namespace reference_host
