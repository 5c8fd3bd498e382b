#pragma once

#include <filesystem>

#include "reference_host/media/FootageFacts.h"

namespace reference_host::media {

/// Looks at `file`: reads all packets of its video once, and decodes the first two pictures.
///
/// The duration comes from the packets' timestamps, which are those of the frames. Where packets
/// lack them (raw streams, for one), only the decoder knows the frames' order, and everything is
/// decoded. Throws MediaError.
FootageFacts inspect(const std::filesystem::path& file);

}  // namespace reference_host::media
