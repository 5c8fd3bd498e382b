#include "reference_host/media/PictureChain.h"

#include <utility>

#include "reference_host/media/Messages.h"

namespace reference_host::media {
namespace {

bool isShown(const AVPacket& packet) {
    return (packet.flags & AV_PKT_FLAG_DISCARD) == 0;
}

}  // namespace

PictureChain::PictureChain(const AVStream& stream)
    : decoder_(stream, Decoder::Threads::one, Decoder::Size::full, Decoder::Quality::quick) {}

void PictureChain::send(const AVPacket& packet, const Savings& savings, const Take& take) {
    isBegun_ = true;
    if (givesAtOnce()) decoder_.leaveOutUnneeded(savings.leavesOutUnneeded);
    decoder_.smoothEdges(!savings.leavesEdges);
    decoder_.send(&packet);
    const AVFrame* newest = givesAtOnce() && isShown(packet) ? decoder_.newest() : nullptr;
    if (newest != nullptr) {
        take(*newest, packet.pts);
        ++awaited_;
    }
    receive(take);
}

void PictureChain::receive(const Take& take) {
    while (const AVFrame* frame = decoder_.receive()) {
        --awaited_;
        hasReceived_ = true;
        if (!givesAtOnce()) take(*frame, frame->best_effort_timestamp);
    }
}

void PictureChain::glimpse(const AVPacket& packet, const Take& take) {
    // What is missing is no error of the file.
    const FirstError aside;
    const std::int64_t damagedBefore = decoder_.damaged();
    send(packet, {.leavesOutUnneeded = false, .leavesEdges = true}, take);
    damageTaken_ += decoder_.damaged() - damagedBefore;
    isSpoilt_ = true;
}

bool PictureChain::end(const Take& take) {
    if (!std::exchange(isBegun_, false)) return true;
    decoder_.send(nullptr);
    receive(take);
    decoder_.forget();
    const bool wasSpoilt = std::exchange(isSpoilt_, false);
    const std::int64_t most = std::exchange(hasReceived_, false) ? decoder_.mostForgotten() : 0;
    const bool isComplete = std::exchange(awaited_, 0) <= most;
    return isComplete || wasSpoilt || !givesAtOnce();
}

std::int64_t PictureChain::takeDamage() {
    const std::int64_t damaged = decoder_.damaged();
    return damaged - std::exchange(damageTaken_, damaged);
}

}  // namespace reference_host::media
