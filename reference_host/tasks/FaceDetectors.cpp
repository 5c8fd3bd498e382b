#include "reference_host/tasks/FaceDetectors.h"

#include <stdexcept>
#include <utility>

#include "reference_host/ReferenceHost.h"
#include "reference_host/cache/contentKey.h"
#include "reference_host/media/MediaError.h"

namespace reference_host {
namespace {

std::string fingerprintOf(const std::filesystem::path& model) try {
    return cache::fingerprint(media::RegularFile(model));
} catch (const media::MediaError& error) {
    throw std::runtime_error("the face model " + model.string() +
                             " cannot be read: " + error.what());
}

}  // namespace

FaceDetectors& FaceDetectors::instance() {
    // Never destroyed: while the process ends, a run may still be on its way to borrow.
    static FaceDetectors& detectors = *new FaceDetectors;
    return detectors;
}

void FaceDetectors::useModel(const std::filesystem::path& model) {
    const auto shelf = std::make_shared<Shelf>();
    shelf->model = model;
    shelf->idle.push_back(vision::makeFaceDetector(model));
    shelf->fingerprint = fingerprintOf(model);
    const std::scoped_lock lock(mutex_);
    shelf_ = shelf;
}

std::string FaceDetectors::modelFingerprint() {
    return shelf()->fingerprint;
}

std::shared_ptr<vision::FaceDetector> FaceDetectors::borrow() {
    const std::shared_ptr<Shelf> from = shelf();
    std::unique_ptr<vision::FaceDetector> detector;
    {
        const std::scoped_lock lock(from->mutex);
        if (!from->idle.empty()) {
            detector = std::move(from->idle.back());
            from->idle.pop_back();
        }
    }
    if (!detector) {
        detector = from->model.empty() ? vision::makeFaceDetector()
                                       : vision::makeFaceDetector(from->model);
    }
    return {detector.release(), [from](vision::FaceDetector* returned) {
                const std::scoped_lock lock(from->mutex);
                from->idle.emplace_back(returned);
            }};
}

std::shared_ptr<FaceDetectors::Shelf> FaceDetectors::shelf() {
    const std::scoped_lock lock(mutex_);
    return shelf_;
}

void useFaceModel(const std::filesystem::path& model) {
    FaceDetectors::instance().useModel(model);
}

}  // namespace reference_host
