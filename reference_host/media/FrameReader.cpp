#include "reference_host/media/FrameReader.h"

#include <cstring>
#include <utility>

#include "reference_host/media/exifOrientation.h"

namespace reference_host::media {
namespace {

constexpr std::size_t matrixBytes = 9 * sizeof(std::int32_t);

Orientation ofMatrix(const std::uint8_t* bytes) {
    std::array<std::int32_t, 9> matrix{};
    std::memcpy(matrix.data(), bytes, matrixBytes);
    return Orientation::ofDisplayMatrix(matrix);
}

}  // namespace

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
    const AVRational shape = container_.video().sample_aspect_ratio;
    return shape.num > 0 && shape.den > 0 ? shape : frame.sample_aspect_ratio;
}

Orientation FrameReader::orientationOf(const AVFrame& frame) const {
    const AVFrameSideData* ofFrame = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
    if (ofFrame != nullptr && ofFrame->size >= matrixBytes) return ofMatrix(ofFrame->data);
    std::size_t size = 0;
    const std::uint8_t* ofStream =
        av_stream_get_side_data(&container_.video(), AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (ofStream != nullptr && size >= matrixBytes) return ofMatrix(ofStream);
    return ofBytes_.value_or(Orientation{});
}

}  // namespace reference_host::media
