#include "reference_host/media/shownAs.h"

#include <cstring>

namespace reference_host::media {
namespace {

Orientation ofMatrixBytes(const std::uint8_t* bytes) {
    std::array<std::int32_t, 9> matrix{};
    std::memcpy(matrix.data(), bytes, sizeof(matrix));
    return Orientation::ofDisplayMatrix(matrix);
}

}  // namespace

AVRational shapeOfPixels(const AVFrame& frame, const AVStream& stream) {
    const AVRational ofStream = stream.sample_aspect_ratio;
    return ofStream.num > 0 && ofStream.den > 0 ? ofStream : frame.sample_aspect_ratio;
}

Orientation orientationOf(const AVFrame& frame, const AVStream& stream) {
    const AVFrameSideData* ofFrame = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
    if (ofFrame != nullptr && ofFrame->size >= 9 * sizeof(std::int32_t)) {
        return ofMatrixBytes(ofFrame->data);
    }
    std::size_t size = 0;
    const std::uint8_t* ofStream =
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    return ofStream != nullptr && size >= 9 * sizeof(std::int32_t) ? ofMatrixBytes(ofStream)
                                                                   : Orientation{};
}

}  // namespace reference_host::media
