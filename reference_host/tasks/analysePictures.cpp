#include "reference_host/tasks/analysePictures.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>
#include <stop_token>
#include <thread>
#include <utility>
#include <vector>

#include "reference_host/media/PositionReader.h"
#include "reference_host/tasks/FaceDetectors.h"
#include "reference_host/tasks/PictureShelf.h"
#include "reference_host/tasks/inParallel.h"
#include "reference_host/vision/measures.h"

namespace reference_host {
namespace {

/// Each part holds a decoder and a detector of its own, which are tens of megabytes for 4K.
constexpr std::size_t maxParts = 4;

/// To begin a part, a file is opened, and decoded from the key frame before its first picture on:
/// for fewer pictures that takes longer than they do.
constexpr std::size_t leastPicturesOfAPart = 8;

/// Beyond 4K, memory counts for more than speed.
constexpr std::int64_t maxPixelsForParts = std::int64_t{4096} * 2304;

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
              host_kit::AnalysisResults& results) {
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
          host_kit::AnalysisResults& results) {
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

/// Returns in how many parts `pictures` pictures are looked at at once. `reader` is one of them.
std::size_t partsFor(std::size_t pictures, const media::FootageFacts& facts,
                     const media::PositionReader& reader) {
    if (reader.framePixels() > maxPixelsForParts) return 1;
    return std::max<std::size_t>(
        1, std::min({std::size_t{std::thread::hardware_concurrency()}, maxParts,
                     pictures / leastPicturesOfAPart, facts.keyTimestamps.size()}));
}

/// One run over the pictures of a footage.
class PictureRun {
public:
    PictureRun(const AnalysisRequest& request, std::vector<std::int64_t> positions,
               host_kit::AnalysisResults& results)
        : request_(request),
          positions_(std::move(positions)),
          order_(inFootageOrder(positions_)),
          results_(results) {
        makeRoom(request_, positions_, results_);
    }

    void finish(const std::stop_token& stop, host_kit::ProgressMeter& progress) {
        const std::stop_callback passOn(stop, [this] { end_.request_stop(); });
        auto first = openReader();
        const std::size_t parts = partsFor(order_.size(), request_.footage->facts(), *first);
        faceCounts_.resize(parts);
        inParallel(
            parts, end_,
            [&](std::size_t part, const std::function<void()>& step) {
                const auto own = part == 0 ? std::move(first) : openReader();
                look(part, *own, step);
            },
            [&](std::size_t done) {
                progress.report(static_cast<std::int32_t>(done * 100 / order_.size()));
            });
        if (request_.wantsFaces && !stop.stop_requested()) noteFaces();
    }

private:
    std::unique_ptr<media::PositionReader> openReader() const {
        const Footage& footage = *request_.footage;
        return std::make_unique<media::PositionReader>(footage.file(), footage.facts(),
                                                       end_.get_token());
    }

    /// Looks at the pictures of one part: as many as of the others, which follow each other in the
    /// footage. Several parts at once: each writes to the places of its own pictures only.
    void look(std::size_t part, media::PositionReader& reader, const std::function<void()>& step) {
        const auto detector = request_.wantsFaces ? FaceDetectors::instance().borrow() : nullptr;
        const std::size_t parts = faceCounts_.size();
        const std::size_t end = order_.size() * (part + 1) / parts;
        vision::Picture picture;
        for (std::size_t at = order_.size() * part / parts; at < end; ++at) {
            if (end_.stop_requested()) return;
            const std::size_t i = order_[at];
            if (get(positions_[i], reader, picture)) {
                take(picture, i, detector.get(), results_);
                if (detector) faceCounts_[part][positions_[i]] = results_.faces[i].faceCount;
            }
            step();
        }
    }

    /// Fills in the picture at a position: as it was kept, where it was, and otherwise decoded.
    bool get(std::int64_t positionTicks, media::PositionReader& reader, vision::Picture& picture) {
        const auto kept = request_.footage->keptPicture(positionTicks);
        return kept ? reader.restore(*kept, picture) : reader.read(positionTicks, picture);
    }

    void noteFaces() {
        Footage::FaceCounts all;
        for (Footage::FaceCounts& ofPart : faceCounts_)
            all.merge(ofPart);
        request_.footage->noteFaces(std::move(all));
    }

    const AnalysisRequest& request_;
    const std::vector<std::int64_t> positions_;
    /// Indexes of positions_.
    const std::vector<std::size_t> order_;
    host_kit::AnalysisResults& results_;
    /// Asked to stop with the run, and where a part fails.
    std::stop_source end_;
    /// One for each part.
    std::vector<Footage::FaceCounts> faceCounts_;
};

}  // namespace

void analysePictures(const AnalysisRequest& request, const std::stop_token& stop,
                     host_kit::ProgressMeter& progress, host_kit::AnalysisResults& results) {
    std::vector<std::int64_t> positions = positionsOf(request);
    if (positions.empty()) return;
    PictureRun(request, std::move(positions), results).finish(stop, progress);
    // Most runs look at pictures once.
    PictureShelf::instance().put(request.footage, {});
}

}  // namespace reference_host
