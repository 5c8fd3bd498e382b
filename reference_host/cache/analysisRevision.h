#pragma once

namespace reference_host::cache {

/// The state of this host's analyses. Raise it whenever the same file may give other scenes,
/// keyframes, faces or measures than before: it is part of every content key, so that nothing that
/// was kept before is found any more. The component's result files know of no detectors.
constexpr int analysisRevision = 9;

}  // namespace reference_host::cache
