#pragma once

#include <cstdint>
#include <functional>

#include "reference_host/media/Decoder.h"

namespace reference_host::media {

/// Decodes a key frame and the pictures behind it, one after the other and as small ones are looked
/// at, and hands out each as soon as it is decoded. Belongs to one thread at a time.
class PictureChain {
public:
    /// Takes in a frame, which is valid during the call, and when it is shown.
    using Take = std::function<void(const AVFrame& frame, std::int64_t timestamp)>;

    /// What is saved at the next picture.
    struct Savings {
        /// It is left out if no other needs it. Only where givesAtOnce().
        bool leavesOutUnneeded = false;
        /// The edges of its blocks are not smoothed.
        bool leavesEdges = false;
    };

    /// `stream` has to outlive this. Throws MediaError where it cannot be decoded.
    explicit PictureChain(const AVStream& stream);

    /// Says whether send() hands out the packet's own picture; in some formats it may come later.
    bool givesAtOnce() const { return decoder_.givesNewest(); }

    /// Says whether something has been sent since the beginning or the last end().
    bool isBegun() const { return isBegun_; }

    /// Decodes the next packet; the first one is a key frame's.
    void send(const AVPacket& packet, const Savings& savings, const Take& take);

    /// Says whether packets may be left out that others need: a copy of an earlier picture takes
    /// the place of each.
    bool copiesMissing() const { return decoder_.copiesMissing(); }

    /// Hands out what comes of a packet without those before it that have not been sent. What is
    /// sent afterwards up to the end is worth nothing. Only where givesAtOnce().
    void glimpse(const AVPacket& packet, const Take& take);

    /// Hands out the pictures that are still to come, and makes ready for another key frame. Says
    /// whether those came that were announced: otherwise packets lacked something that the decoder
    /// needs.
    bool end(const Take& take);

    /// Returns how many frames have been lost, or decoded with parts made up, since the last call.
    std::int64_t takeDamage();

    /// Says whether there has been any damage.
    bool hasMetDamage() const { return decoder_.damaged() > 0; }

private:
    void receive(const Take& take);

    Decoder decoder_;
    bool isBegun_ = false;
    /// It has decoded something with parts missing on purpose.
    bool isSpoilt_ = false;
    /// Pictures that were handed out and have not been received in their turn.
    std::int64_t awaited_ = 0;
    /// Pictures have been received since the beginning.
    bool hasReceived_ = false;
    std::int64_t damageTaken_ = 0;
};

}  // namespace reference_host::media
