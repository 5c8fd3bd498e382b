#pragma once

#include <cstdint>
#include <vector>

#include "reference_host/media/AvPointers.h"

namespace reference_host::media {

/// Watches the parameters that a decoder needs and that are stored among the pictures: whoever
/// enters a video in its middle may lack some. Belongs to one thread at a time.
class ParameterSets {
public:
    /// Knows what the container tells about `stream`, and what FFmpeg's first look has found.
    explicit ParameterSets(const AVStream& stream);

    /// Takes the next key frame, and says whether decoding can begin there: whether it brings
    /// parameters of its own, or none have come that differ from those of the stream.
    bool areKnownAt(const AVPacket& key);

private:
    /// Null where parameters are stored elsewhere.
    AvPointer<AVBSFContext> extractor_;
    std::vector<std::uint8_t> ofStream_;
    bool haveChanged_ = false;
};

}  // namespace reference_host::media
