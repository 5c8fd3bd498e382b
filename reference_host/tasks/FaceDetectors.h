#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "reference_host/vision/FaceDetector.h"

namespace reference_host {

/// Lends face detectors to runs: making one takes longer than looking at a picture, and one serves
/// a single thread at a time. Any thread.
class FaceDetectors {
public:
    static FaceDetectors& instance();

    /// Has faces found by `model` from the next loan on. Throws std::runtime_error, which names the
    /// file, where it cannot be used; all is then as it was.
    void useModel(const std::filesystem::path& model);

    /// Returns what names the content of the model in use; empty for the detector that is built in.
    std::string modelFingerprint();

    /// Returns a detector, which goes back by itself at its end. Throws std::runtime_error where
    /// none can be made.
    std::shared_ptr<vision::FaceDetector> borrow();

private:
    /// The detectors of one model that nobody uses. Loans hold it, too.
    struct Shelf {
        std::filesystem::path model;  ///< empty: what is built in
        std::string fingerprint;      ///< of the model's bytes; empty without one
        std::mutex mutex;
        std::vector<std::unique_ptr<vision::FaceDetector>> idle;
    };

    std::shared_ptr<Shelf> shelf();

    std::mutex mutex_;
    std::shared_ptr<Shelf> shelf_ = std::make_shared<Shelf>();
};

}  // namespace reference_host
