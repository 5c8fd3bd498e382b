#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>

#include "reference_host/materials/Footage.h"

namespace reference_host {

/// Knows which footages hold pictures that were kept, and has them let go of these when the memory
/// is needed for others. Any thread.
class PictureShelf {
public:
    static PictureShelf& instance();

    /// Has `footage` hold `pictures`.
    void put(const std::shared_ptr<Footage>& footage, Footage::Pictures pictures);

    /// Makes room for the pictures of the next footage, as far as there are older ones to let go
    /// of.
    void makeRoom();

private:
    std::mutex mutex_;
    /// Those with pictures, the oldest first.
    std::list<std::weak_ptr<Footage>> holders_;
};

}  // namespace reference_host
