#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reference_host/media/FootageFacts.h"

namespace reference_host::cache {

/// What is kept of a material so that it need not be looked at again.
struct KeptFacts {
    /// The libraries that found the facts, with their versions: others may find other ones.
    std::string madeBy;
    /// The absolute path under which the file was last imported.
    std::string file;
    media::FootageFacts footage;
    /// What the last analysis of a video found wrong with the file, one line each.
    std::vector<std::string> analysisWarnings;
    /// How many faces the last detection found in pictures of a video, by their positions in ticks.
    std::map<std::int64_t, std::int32_t> faceCounts;

    bool operator==(const KeptFacts&) const = default;
};

/// Returns the facts as JSON.
std::string keptFactsText(const KeptFacts& facts);

/// Returns the facts that `text` holds; none where they are not whole, or are such as no look at a
/// file gives. `text` may be anything: this takes some thirty times its size at most, and no
/// depth of the stack.
std::optional<KeptFacts> parseKeptFacts(std::string_view text);

}  // namespace reference_host::cache
