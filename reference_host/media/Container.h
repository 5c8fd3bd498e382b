#pragma once

#include <filesystem>
#include <memory>
#include <stop_token>

#include "reference_host/media/AvPointers.h"
#include "reference_host/media/ByteSource.h"

namespace reference_host::media {

/// A media file whose one video stream is read packet by packet. Belongs to one thread at a time.
///
/// The file is judged by its content alone, and nothing but this file is ever opened: a playlist,
/// an external reference or a name with a meaning of its own leads nowhere.
class Container {
public:
    /// Opens `path`. Reading gives up soon after `stop` is requested. Throws MediaError.
    Container(const std::filesystem::path& path, std::stop_token stop);

    /// The stream of moving or still pictures; cover art does not count.
    const AVStream& video() const { return *video_; }

    /// Reads the video's next packet. False at the end, or where reading cannot go on.
    bool read(AVPacket& packet);

    /// Goes to a place from which the frame at `timestamp`, in the unit of the video, should be
    /// met; it can be anywhere. False where reading cannot go on.
    bool seek(std::int64_t timestamp);

    /// How many packets of the video have been read so far.
    std::int64_t packetsRead() const { return packets_; }

    /// Says whether reading came to its end by an error, or before the end that the file's own
    /// index promises. Ask after the last read, where all was read in order.
    bool endedEarly() const;

private:
    static int readBytes(void* self, std::uint8_t* buffer, int size);
    static std::int64_t seekBytes(void* self, std::int64_t offset, int whence);
    static int isStopped(void* self);

    void open();
    void inspectStreams();
    void chooseVideo();

    std::stop_token stop_;
    std::unique_ptr<ByteSource> source_;
    std::int64_t offset_ = 0;
    AvPointer<AVIOContext> io_;
    AvPointer<AVFormatContext> context_;
    AVStream* video_ = nullptr;
    std::int64_t packets_ = 0;
    bool failed_ = false;
};

}  // namespace reference_host::media
