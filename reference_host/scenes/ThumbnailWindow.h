#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference_host/scenes/Thumbnail.h"

namespace reference_host::scenes {

/// One picture of a window.
struct WindowPicture {
    /// Its index among the pictures that were seen.
    std::size_t frame = 0;
    std::int64_t positionTicks = 0;
    Thumbnail thumbnail;
    /// See PictureFeatures.
    bool goesOn = false;
    /// The distance of the two seen pictures of the window that enclose it, or of which it is the
    /// second; 0 for the first.
    std::int64_t stepTicks = 0;
    /// For one that stands in for a picture that was left out, how far the next seen one of the
    /// window is behind `frame`, which is that of the one before it; 0 for one that was seen.
    std::size_t framesToNext = 0;

    bool isStandIn() const { return framesToNext > 0; }
};

/// The newest pictures of a stream, up to a fixed number; addressed by running numbers that go on
/// counting as old pictures fall out.
class ThumbnailWindow {
public:
    explicit ThumbnailWindow(std::size_t capacity) : pictures_(capacity) {}

    /// Takes the next picture; the oldest makes room for it.
    void push(const WindowPicture& picture) { pictures_[end_++ % pictures_.size()] = picture; }

    /// The number of the oldest picture held.
    std::size_t begin() const { return end_ > pictures_.size() ? end_ - pictures_.size() : 0; }

    /// The number that the next picture will get.
    std::size_t end() const { return end_; }

    /// Returns the picture with this number, from begin() to end() - 1.
    const WindowPicture& operator[](std::size_t number) const {
        assert(begin() <= number && number < end_);
        return pictures_[number % pictures_.size()];
    }

private:
    std::vector<WindowPicture> pictures_;
    std::size_t end_ = 0;
};

}  // namespace reference_host::scenes
