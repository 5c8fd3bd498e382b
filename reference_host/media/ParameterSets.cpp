#include "reference_host/media/ParameterSets.h"

#include <algorithm>
#include <span>
#include <utility>

namespace reference_host::media {
namespace {

/// In the first byte of a stream's parameters: they are kept by the container, in a form of its
/// own, and pictures bring none.
constexpr std::uint8_t containerForm = 1;

bool storesParametersInPictures(const AVCodecParameters& codec) {
    switch (codec.codec_id) {
        case AV_CODEC_ID_H264:
        case AV_CODEC_ID_HEVC:
            return codec.extradata_size == 0 || codec.extradata[0] != containerForm;
        case AV_CODEC_ID_MPEG1VIDEO:
        case AV_CODEC_ID_MPEG2VIDEO:
            return true;
        default:
            return false;
    }
}

/// Returns null where FFmpeg was built without it.
AvPointer<AVBSFContext> makeExtractor(const AVCodecParameters& codec) {
    const AVBitStreamFilter* filter = av_bsf_get_by_name("extract_extradata");
    AVBSFContext* context = nullptr;
    if (filter == nullptr || av_bsf_alloc(filter, &context) < 0) return nullptr;
    AvPointer<AVBSFContext> extractor = adopt(context);
    if (avcodec_parameters_copy(extractor->par_in, &codec) < 0) throw std::bad_alloc();
    return av_bsf_init(extractor.get()) < 0 ? nullptr : std::move(extractor);
}

}  // namespace

ParameterSets::ParameterSets(const AVStream& stream) {
    const AVCodecParameters& codec = *stream.codecpar;
    if (!storesParametersInPictures(codec)) return;
    extractor_ = makeExtractor(codec);
    ofStream_.assign(codec.extradata, codec.extradata + codec.extradata_size);
}

bool ParameterSets::areKnownAt(const AVPacket& key) {
    if (!extractor_) return true;
    const AvPointer<AVPacket> packet = adopt(av_packet_clone(&key));
    if (av_bsf_send_packet(extractor_.get(), packet.get()) < 0) return true;
    if (av_bsf_receive_packet(extractor_.get(), packet.get()) < 0) return true;
    std::size_t size = 0;
    const std::uint8_t* own =
        av_packet_get_side_data(packet.get(), AV_PKT_DATA_NEW_EXTRADATA, &size);
    if (own == nullptr) return !haveChanged_;
    const std::span<const std::uint8_t> parameters(own, size);
    haveChanged_ = haveChanged_ || !std::ranges::equal(parameters, ofStream_);
    return true;
}

}  // namespace reference_host::media
