#pragma once

#include <cstdint>

#include "reference_host/media/AvPointers.h"

namespace reference_host::media {

/// Decodes the packets of one video stream into frames, in the order in which they are shown.
/// Belongs to one thread at a time.
class Decoder {
public:
    enum class Threads {
        one,     ///< a frame comes as soon as its packets are there
        several  ///< as fast as the machine allows; frames come some packets later
    };

    enum class Size {
        full,
        reduced  ///< by halves, where the codec can; the longer side keeps vision::maxPictureSidePx
    };

    enum class Quality {
        exact,  ///< as the format defines it
        quick   ///< without the filter that smooths the edges of blocks: good enough to look at
                ///< small
    };

    /// `stream` has to outlive this. Throws MediaError where it cannot be decoded.
    Decoder(const AVStream& stream, Threads threads, Size size, Quality quality = Quality::exact);
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    /// Takes the next packet, or null at the end. Call it when receive() has given null.
    void send(const AVPacket* packet);

    /// Returns the next frame, valid until the next call; null where another packet is needed, or
    /// after the last frame. What cannot be decoded is passed over and counted.
    const AVFrame* receive();

    /// Says whether newest() works: of a quick decoder with one thread, for formats whose frames
    /// have another order when they are stored than when they are shown.
    bool givesNewest() const { return newest_ != nullptr; }

    /// Returns the frame that the last packet was decoded to, valid until the next call of send();
    /// null where there is none. receive() gives the same frame when its turn comes.
    const AVFrame* newest();

    /// Says whether a copy of an earlier frame takes the place of one that others need and whose
    /// packet was not sent.
    bool copiesMissing() const { return context_->codec_id == AV_CODEC_ID_H264; }

    /// Has frames left out, from the next packet on, that no other frame needs: they cost nothing
    /// then. Only where givesNewest().
    void leaveOutUnneeded(bool leavesOut);

    /// Has the edges of blocks smoothed or not, from the next packet on; a quick decoder begins
    /// without. What is not smoothed is passed on to all pictures that are predicted from it.
    void smoothEdges(bool smooths);

    /// How many frames may never come though nothing is wrong with them. Begun at the key frame of
    /// an open group, the decoder of H.264 forgets those that it has decoded before it gives the
    /// first one, if it is told of the end meanwhile.
    int mostForgotten() const;

    /// Prepares for packets from another place of the stream; frames not yet received are dropped.
    void forget() { avcodec_flush_buffers(context_.get()); }

    /// Frames received so far.
    std::int64_t decoded() const { return decoded_; }

    /// How many frames were lost, or received with parts made up by the decoder.
    std::int64_t damaged() const { return lost_ + incomplete_; }

    /// All frames that were met, lost ones included.
    std::int64_t met() const { return decoded_ + lost_; }

private:
    static int allocate(AVCodecContext* context, AVFrame* frame, int flags);
    void open(const AVCodec& codec, Threads threads, Quality quality, int halvings);
    void learnSize(const AVPacket& packet);

    const AVStream& stream_;
    AvPointer<AVCodecContext> context_;
    /// Pictures are to be reduced, and only their own heads tell how large they are: the container
    /// does not, and FFmpeg's first look was not allowed to. So the first one is begun twice.
    bool awaitsSize_ = false;
    /// What was learnt from it: how often it can be halved.
    int halvings_ = 0;
    AvPointer<AVFrame> frame_;
    /// What memory was given to for the last packet's own frame; null where that is not to be
    /// known.
    AvPointer<AVFrame> newest_;
    std::int64_t decoded_ = 0;
    std::int64_t incomplete_ = 0;
    std::int64_t lost_ = 0;
};

}  // namespace reference_host::media
