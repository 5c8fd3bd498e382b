#include "reference_host/media/FrameReader.h"

#include <utility>

#include "reference_host/media/exifOrientation.h"
#include "reference_host/media/frameShape.h"

namespace reference_host::media {
FrameReader::FrameReader(const std::filesystem::path& file, Decoder::Threads threads,
                         Decoder::Size size, std::stop_token stop, Decoder::Quality quality)
    : stop_(std::move(stop)),
      container_(file, stop_),
      decoder_(container_.video(), threads, size, quality),
      clock_(container_.video()),
      packet_(adopt(av_packet_alloc())) {}

const AVFrame* FrameReader::next() {
    for (;;) {
        if (stop_.stop_requested()) return nullptr;
        if (const AVFrame* frame = decoder_.receive()) {
            timestamp_ = clock_.timestampOf(*frame);
            awaited_.meet(timestamp_);
            return frame;
        }
        if (atEnd_) {
            awaited_.end();
            return nullptr;
        }
        if (container_.read(*packet_)) {
            send();
        } else {
            atEnd_ = true;
            decoder_.send(nullptr);
        }
    }
}

bool FrameReader::startAt(std::int64_t timestamp, std::int64_t from) {
    decoder_.forget();
    awaited_ = {};
    atEnd_ = false;
    if (!container_.seek(from)) return false;
    while (!stop_.stop_requested() && container_.read(*packet_)) {
        if ((packet_->flags & AV_PKT_FLAG_KEY) == 0 || packet_->pts < timestamp) continue;
        if (packet_->pts > timestamp) return false;
        send();
        return true;
    }
    return false;
}

void FrameReader::send() {
    if (!ofBytes_) {
        ofBytes_ = exifOrientation({packet_->data, static_cast<std::size_t>(packet_->size)});
    }
    if (packet_->pts != AV_NOPTS_VALUE && (packet_->flags & AV_PKT_FLAG_DISCARD) == 0) {
        awaited_.announce(packet_->pts);
    }
    decoder_.send(packet_.get());
}

AVRational FrameReader::shapeOfPixels(const AVFrame& frame) const {
    return media::shapeOfPixels(container_.video(), frame);
}

Orientation FrameReader::orientationOf(const AVFrame& frame) const {
    const std::optional<Orientation> known = media::orientationOf(container_.video(), frame);
    return known ? *known : ofBytes_.value_or(Orientation{});
}

}  // namespace reference_host::media
