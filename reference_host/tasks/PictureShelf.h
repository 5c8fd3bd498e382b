#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>

#include "reference_host/materials/Footage.h"

namespace reference_host {

/// Knows which footages hold pictures that were kept, and has them let go of these when the memory
/// is needed for others. Any thread.
///
/// All pictures together take 64 MiB where one footage is analysed after the other, and so much for
/// each of those that are analysed at once: never does one let go of pictures that it still needs,
/// since a picture that is decoded again is not quite the same.
class PictureShelf {
public:
    static PictureShelf& instance();

    /// One footage's use of the memory: from its making on, pictures may be kept.
    class Use {
    public:
        Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();
    };

    /// Has `footage` hold `pictures`.
    void put(const std::shared_ptr<Footage>& footage, Footage::Pictures pictures);

private:
    void begin();
    void end();

    std::mutex mutex_;
    int uses_ = 0;
    int mostUses_ = 0;
    /// Those with pictures, the oldest first.
    std::list<std::weak_ptr<Footage>> holders_;
};

}  // namespace reference_host
