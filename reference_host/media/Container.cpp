#include "reference_host/media/Container.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "reference_host/media/Limits.h"
#include "reference_host/media/MediaError.h"
#include "reference_host/media/Messages.h"
#include "reference_host/media/openSource.h"

namespace reference_host::media {
namespace {

/// Few enough calls for large files, and little waste for small ones.
constexpr int ioBufferBytes = 64 * 1024;

/// What a container refers to stays closed.
int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EACCES);
}

/// FFmpeg's options, freed at the end of the scope.
class Options {
public:
    Options() = default;
    Options(Options&& other) noexcept : entries_(std::exchange(other.entries_, nullptr)) {}
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;
    ~Options() { av_dict_free(&entries_); }

    void set(const char* key, const std::string& value) {
        av_dict_set(&entries_, key, value.c_str(), 0);
    }
    AVDictionary** get() { return &entries_; }

private:
    AVDictionary* entries_ = nullptr;
};

/// Text that FFmpeg would draw into pictures of its own making; no footage.
bool isDrawnText(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_ANSI:
        case AV_CODEC_ID_BINTEXT:
        case AV_CODEC_ID_XBIN:
        case AV_CODEC_ID_IDF:
        case AV_CODEC_ID_SVG:
            return true;
        default:
            return false;
    }
}

/// Up to how many pixels FFmpeg may go by itself when it looks at a stream.
std::int64_t maxPixelsOfFirstLook(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_PAM:
        case AV_CODEC_ID_PBM:
        case AV_CODEC_ID_PFM:
        case AV_CODEC_ID_PGM:
        case AV_CODEC_ID_PGMYUV:
        case AV_CODEC_ID_PPM:
            // Their size tells where they end, so what stops the first look stops all reading. That
            // look decodes nothing, since the head of the file tells all.
            return maxPicturePixels;
        default:
            return maxProbedPixels;
    }
}

bool isAttached(const AVStream& stream) {
    return (stream.disposition & (AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS)) !=
           0;
}

bool isVideo(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isAttached(stream) &&
           !isDrawnText(stream.codecpar->codec_id);
}

/// The greater, the rather is this stream what a player would show.
std::pair<bool, std::int64_t> rankOf(const AVStream& stream) {
    const bool isDefault = (stream.disposition & AV_DISPOSITION_DEFAULT) != 0;
    return {isDefault, std::int64_t{stream.codecpar->width} * stream.codecpar->height};
}

}  // namespace

Container::Container(const std::filesystem::path& path, std::stop_token stop)
    : stop_(std::move(stop)), source_(openSource(path)) {
    routeMessages();
    open();
    inspectStreams();
    chooseVideo();
}

void Container::open() {
    auto* buffer = static_cast<unsigned char*>(av_malloc(ioBufferBytes));
    if (buffer == nullptr) throw std::bad_alloc();
    io_ = adopt(avio_alloc_context(buffer, ioBufferBytes, 0, this, readBytes, nullptr, seekBytes));

    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) throw std::bad_alloc();
    context->pb = io_.get();
    context->io_open = refuseToOpen;
    context->interrupt_callback = {isStopped, this};
    Options options;
    // Some formats open further files past the callback above; they inherit this list, in which no
    // protocol stands.
    options.set("protocol_whitelist", "none");

    const FirstError error;
    // The empty name keeps FFmpeg from reading a meaning into the file's own.
    if (avformat_open_input(&context, "", nullptr, options.get()) < 0) {
        throw MediaError(error.explain("it is not a media file that can be read"));
    }
    context_ = adopt(context);
}

void Container::inspectStreams() {
    std::vector<Options> options(context_->nb_streams);
    std::vector<AVDictionary*> entries;
    for (std::size_t i = 0; i < options.size(); ++i) {
        const AVCodecID codec = context_->streams[i]->codecpar->codec_id;
        options[i].set("max_pixels", std::to_string(maxPixelsOfFirstLook(codec)));
        entries.push_back(std::exchange(*options[i].get(), nullptr));
    }
    const int found = avformat_find_stream_info(context_.get(), entries.data());
    for (std::size_t i = 0; i < options.size(); ++i)
        *options[i].get() = entries[i];
    // What can be told of the streams without further information may be enough.
    if (found == AVERROR(ENOMEM)) throw std::bad_alloc();
}

void Container::chooseVideo() {
    bool hasAttached = false;
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        AVStream* stream = context_->streams[i];
        stream->discard = AVDISCARD_ALL;
        hasAttached = hasAttached || isAttached(*stream);
        if (!isVideo(*stream)) continue;
        if (video_ == nullptr || rankOf(*video_) < rankOf(*stream)) video_ = stream;
    }
    if (video_ == nullptr) {
        throw MediaError(hasAttached ? "it holds no video, only a cover picture"
                                     : "it holds no video and no picture");
    }
    video_->discard = AVDISCARD_DEFAULT;
}

bool Container::read(AVPacket& packet) {
    av_packet_unref(&packet);
    for (;;) {
        const FirstError error;
        const int result = av_read_frame(context_.get(), &packet);
        if (result < 0) {
            // Some formats tell an early end from a proper one in words only.
            failed_ = result != AVERROR_EOF || !error.text().empty();
            return false;
        }
        if (packet.stream_index == video_->index) break;
        av_packet_unref(&packet);
    }
    ++packets_;
    return true;
}

bool Container::seek(std::int64_t timestamp) {
    return av_seek_frame(context_.get(), video_->index, timestamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool Container::endedEarly() const {
    return failed_ || packets_ < avformat_index_get_entries_count(video_);
}

int Container::readBytes(void* self, std::uint8_t* buffer, int size) {
    auto& container = *static_cast<Container*>(self);
    if (container.stop_.stop_requested()) return AVERROR_EXIT;
    const std::ptrdiff_t got =
        container.source_->readAt(container.offset_, buffer, static_cast<std::size_t>(size));
    if (got == 0) return AVERROR_EOF;
    if (got > 0) container.offset_ += got;
    // FFmpeg's error codes are negative errno values.
    return static_cast<int>(got);
}

std::int64_t Container::seekBytes(void* self, std::int64_t offset, int whence) {
    auto& container = *static_cast<Container*>(self);
    const std::int64_t size = container.source_->sizeBytes();
    std::int64_t base = 0;
    switch (whence & ~AVSEEK_FORCE) {
        case AVSEEK_SIZE:
            return size;
        case SEEK_CUR:
            base = container.offset_;
            break;
        case SEEK_END:
            base = size;
            break;
        default:
            break;
    }
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0) return AVERROR(EINVAL);
    return container.offset_ = target;
}

int Container::isStopped(void* self) {
    return static_cast<Container*>(self)->stop_.stop_requested() ? 1 : 0;
}

}  // namespace reference_host::media
