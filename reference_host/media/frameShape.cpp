#include "reference_host/media/frameShape.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace reference_host::media {
namespace {

constexpr std::size_t matrixBytes = 9 * sizeof(std::int32_t);

Orientation ofMatrix(const std::uint8_t* bytes) {
    std::array<std::int32_t, 9> matrix{};
    std::memcpy(matrix.data(), bytes, matrixBytes);
    return Orientation::ofDisplayMatrix(matrix);
}

}  // namespace

AVRational shapeOfPixels(const AVStream& stream, const AVFrame& frame) {
    const AVRational shape = stream.sample_aspect_ratio;
    return shape.num > 0 && shape.den > 0 ? shape : frame.sample_aspect_ratio;
}

std::optional<Orientation> orientationOf(const AVStream& stream, const AVFrame& frame) {
    const AVFrameSideData* ofFrame = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
    if (ofFrame != nullptr && ofFrame->size >= matrixBytes) return ofMatrix(ofFrame->data);
    std::size_t size = 0;
    const std::uint8_t* ofStream =
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (ofStream != nullptr && size >= matrixBytes) return ofMatrix(ofStream);
    return std::nullopt;
}

}  // namespace reference_host::media
