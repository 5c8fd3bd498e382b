#pragma once

#include <functional>
#include <map>
#include <set>

#include "Clip.h"
#include "host/tasks.h"

namespace minimal_host {

/// What a run has to do: a copy of what its task was told.
struct Work {
    std::set<std::int32_t> types;
    std::shared_ptr<Clip> clip;  ///< null where the task has no source
    std::int32_t mode = KOR::parameterModeDefault;
    KOR::SceneParameters scene{1.0, 3.0, 0};
    KOR::KeyFrameParameters keyFrame{6, 4, 0, 4, 2, 2};
    std::vector<KOR::TickRange> ranges;
    std::vector<std::int64_t> positions;
};

/// The elements of each kind, as the bytes of their types in host/results.h.
using Results = std::map<std::int32_t, std::vector<std::string>>;

/// Does the work, and reports its percentage often, not always a higher one. Throws what `report`
/// throws, which ends it, or a std::exception where it fails.
Results analyse(const Work& work, const std::function<void(std::int32_t)>& report);

}  // namespace minimal_host
