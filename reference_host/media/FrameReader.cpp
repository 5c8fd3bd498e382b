#include "reference_host/media/FrameReader.h"

#include <utility>

namespace reference_host::media {

FrameReader::FrameReader(const std::filesystem::path& file, Decoder::Threads threads,
                         std::stop_token stop)
    : stop_(std::move(stop)),
      container_(file, stop_),
      decoder_(container_.video(), threads),
      clock_(container_.video()),
      packet_(adopt(av_packet_alloc())) {}

const AVFrame* FrameReader::next() {
    for (;;) {
        if (stop_.stop_requested()) return nullptr;
        if (const AVFrame* frame = decoder_.receive()) {
            timestamp_ = clock_.timestampOf(*frame);
            return frame;
        }
        if (atEnd_) return nullptr;
        atEnd_ = !container_.read(*packet_);
        decoder_.send(atEnd_ ? nullptr : packet_.get());
    }
}

bool FrameReader::startAt(std::int64_t timestamp, std::int64_t from) {
    decoder_.forget();
    atEnd_ = false;
    if (!container_.seek(from)) return false;
    while (!stop_.stop_requested() && container_.read(*packet_)) {
        if ((packet_->flags & AV_PKT_FLAG_KEY) == 0 || packet_->pts < timestamp) continue;
        if (packet_->pts > timestamp) return false;
        decoder_.send(packet_.get());
        return true;
    }
    return false;
}

}  // namespace reference_host::media
