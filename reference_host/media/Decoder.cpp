#include "reference_host/media/Decoder.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <string>
#include <thread>

#include "reference_host/media/Limits.h"
#include "reference_host/media/MediaError.h"
#include "reference_host/media/Messages.h"
#include "reference_host/vision/Picture.h"

namespace reference_host::media {
namespace {

/// Each thread of the decoder holds a whole frame or more, and beyond these few the reader of the
/// frames is what takes the time.
constexpr unsigned maxThreads = 4;

/// Beyond about 8K, memory counts for more than speed.
constexpr std::int64_t maxPixelsForThreads = std::int64_t{1} << 26;

int threadCount(const AVCodecParameters& codec, Decoder::Threads threads) {
    const bool large = std::int64_t{codec.width} * codec.height > maxPixelsForThreads;
    if (threads == Decoder::Threads::one || large) return 1;
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, maxThreads));
}

/// Returns how often a picture can be halved before it is smaller than those that are looked at.
int halvingsOf(int widthPx, int heightPx, const AVCodec& codec) {
    const int side = std::max(widthPx, heightPx);
    int count = 0;
    while (count < codec.max_lowres && side >> (count + 1) >= vision::maxPictureSidePx)
        ++count;
    return count;
}

/// Says whether a decoder of this format, given a packet and one thread, has decoded the packet's
/// frame when it takes the next one, whenever that is shown.
bool decodesAtOnce(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_H264:
        case AV_CODEC_ID_HEVC:
        case AV_CODEC_ID_MPEG1VIDEO:
        case AV_CODEC_ID_MPEG2VIDEO:
        case AV_CODEC_ID_MPEG4:
            return true;
        default:
            return false;
    }
}

/// Says whether a decoder asks for the memory of frames that it makes up, in the place of missing
/// ones, before that of the packet's own; others do so behind it.
bool makesUpFramesFirst(AVCodecID codec) {
    return codec == AV_CODEC_ID_H264;
}

/// Says whether a decoder leaves damaged parts of pictures as their memory was before.
bool leavesPartsOut(AVCodecID codec) {
    return codec == AV_CODEC_ID_VP8 || codec == AV_CODEC_ID_PRORES || codec == AV_CODEC_ID_MJPEG;
}

/// Empties memory that may have had another picture in it.
void clear(const AVFrame& frame) {
    for (const AVBufferRef* part : frame.buf) {
        if (part != nullptr) std::fill_n(part->data, part->size, std::uint8_t{0});
    }
}

/// Has get_buffer2 called by the decoder's threads themselves: otherwise older versions of FFmpeg
/// make them take turns. Newer ones expect it of every such function.
void allowThreadsToAllocate([[maybe_unused]] AVCodecContext& context) {
#if LIBAVCODEC_VERSION_MAJOR < 60
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    context.thread_safe_callbacks = 1;
#pragma GCC diagnostic pop
#endif
}

}  // namespace

Decoder::Decoder(const AVStream& stream, Threads threads, Size size, Quality quality)
    : stream_(stream), frame_(adopt(av_frame_alloc())) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) {
        throw MediaError(std::string("there is no decoder for its format ") +
                         avcodec_get_name(parameters.codec_id));
    }
    const bool isReduced = size == Size::reduced;
    awaitsSize_ = isReduced && parameters.width <= 0 && codec->max_lowres > 0;
    const bool givesNewest =
        quality == Quality::quick && threads == Threads::one && decodesAtOnce(parameters.codec_id);
    if (givesNewest) newest_ = adopt(av_frame_alloc());
    open(*codec, threads, quality,
         isReduced ? halvingsOf(parameters.width, parameters.height, *codec) : 0);
}

void Decoder::open(const AVCodec& codec, Threads threads, Quality quality, int halvings) {
    const AVCodecParameters& parameters = *stream_.codecpar;
    context_ = adopt(avcodec_alloc_context3(&codec));
    if (avcodec_parameters_to_context(context_.get(), &parameters) < 0) throw std::bad_alloc();
    context_->pkt_timebase = stream_.time_base;
    context_->max_pixels = maxPicturePixels;
    context_->opaque = this;
    context_->get_buffer2 = allocate;
    allowThreadsToAllocate(*context_);
    context_->lowres = halvings;
    // With several threads, nobody sees in time where the filter is needed after all.
    if (quality == Quality::quick) {
        context_->skip_loop_filter = threads == Threads::one ? AVDISCARD_ALL : AVDISCARD_NONREF;
    }
    context_->thread_count = threadCount(parameters, threads);
    const FirstError error;
    if (avcodec_open2(context_.get(), &codec, nullptr) < 0) {
        throw MediaError(error.explain("its pictures cannot be decoded"));
    }
}

/// Gives a frame its memory unless it would be more than maxPictureBytes, or only its size is asked
/// for.
int Decoder::allocate(AVCodecContext* context, AVFrame* frame, int flags) {
    const int bytes = av_image_get_buffer_size(static_cast<AVPixelFormat>(frame->format),
                                               frame->width, frame->height, 1);
    if (bytes < 0) return bytes;
    if (bytes > maxPictureBytes) {
        av_log(context, AV_LOG_ERROR,
               "Picture of %dx%d takes %d bytes: the limit is %" PRId64 " bytes\n", frame->width,
               frame->height, bytes, maxPictureBytes);
        return AVERROR(EINVAL);
    }
    auto& decoder = *static_cast<Decoder*>(context->opaque);
    if (decoder.awaitsSize_) {
        decoder.halvings_ = halvingsOf(context->width, context->height, *context->codec);
        return AVERROR(EAGAIN);
    }
    const int result = avcodec_default_get_buffer2(context, frame, flags);
    if (result >= 0 && leavesPartsOut(context->codec_id)) clear(*frame);
    if (result < 0 || !decoder.newest_) return result;
    const bool hasNewest = decoder.newest_->buf[0] != nullptr;
    if (hasNewest && !makesUpFramesFirst(context->codec_id)) return result;
    av_frame_unref(decoder.newest_.get());
    return av_frame_ref(decoder.newest_.get(), frame);
}

void Decoder::learnSize(const AVPacket& packet) {
    {
        // That the picture is not decoded yet is no error.
        const FirstError aside;
        avcodec_send_packet(context_.get(), &packet);
    }
    awaitsSize_ = false;
    open(*context_->codec, Threads::one, Quality::exact, halvings_);
}

void Decoder::send(const AVPacket* packet) {
    if (awaitsSize_ && packet != nullptr) learnSize(*packet);
    if (newest_) av_frame_unref(newest_.get());
    const int result = avcodec_send_packet(context_.get(), packet);
    if (result < 0 && result != AVERROR_EOF) ++lost_;
}

const AVFrame* Decoder::newest() {
    AVFrame* frame = newest_.get();
    if (frame->buf[0] == nullptr) return nullptr;
    // Memory is asked for by whole blocks.
    frame->width = std::min(frame->width, context_->width);
    frame->height = std::min(frame->height, context_->height);
    return frame;
}

void Decoder::leaveOutUnneeded(bool leavesOut) {
    context_->skip_frame = leavesOut ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
}

void Decoder::smoothEdges(bool smooths) {
    context_->skip_loop_filter = smooths ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

int Decoder::mostForgotten() const {
    return context_->codec_id == AV_CODEC_ID_H264 ? stream_.codecpar->video_delay : 0;
}

const AVFrame* Decoder::receive() {
    for (;;) {
        const int result = avcodec_receive_frame(context_.get(), frame_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return nullptr;
        if (result < 0) {
            ++lost_;
            continue;
        }
        ++decoded_;
        if (frame_->decode_error_flags != 0 || (frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0) {
            ++incomplete_;
        }
        return frame_.get();
    }
}

}  // namespace reference_host::media
