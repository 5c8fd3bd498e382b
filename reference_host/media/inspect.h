#pragma once

#include <filesystem>
#include <stop_token>

#include "reference_host/media/FootageFacts.h"

namespace reference_host::media {

/// Looks at `file`: reads all packets of its video once, and decodes the first two pictures.
///
/// The duration comes from the packets' timestamps, which are those of the frames. Where packets
/// lack them (raw streams, for one), only the decoder knows the frames' order, and everything is
/// decoded. Throws MediaError; also soon after `stop` is requested, when what was read so far
/// would be half the truth.
FootageFacts inspect(const std::filesystem::path& file, const std::stop_token& stop = {});

}  // namespace reference_host::media
