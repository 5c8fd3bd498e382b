#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <new>

namespace reference_host::media {

/// Frees what FFmpeg allocated, each kind in its own way.
struct AvFree {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
    void operator()(AVIOContext* io) const {
        // FFmpeg may have put another buffer in the place of the first one.
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};

template <typename Object>
using AvPointer = std::unique_ptr<Object, AvFree>;

/// Takes over what an allocating function of FFmpeg gave. Throws std::bad_alloc for null.
template <typename Object>
AvPointer<Object> adopt(Object* object) {
    if (object == nullptr) throw std::bad_alloc();
    return AvPointer<Object>(object);
}

}  // namespace reference_host::media
