#pragma once

#include <vector>

#include "validator/component/Stage.h"

/// The claims about components, one source for each group; the group is what stands before the dot
/// of an id.
namespace validator {

extern const std::vector<RunnableCheck> libraryChecks;
extern const std::vector<ComponentCheck> cachewriteChecks;
extern const std::vector<ComponentCheck> durationChecks;
extern const std::vector<ComponentCheck> entropyChecks;
extern const std::vector<ComponentCheck> facerectChecks;
extern const std::vector<ComponentCheck> facesChecks;
extern const std::vector<ComponentCheck> identityChecks;
extern const std::vector<ComponentCheck> keyframesChecks;
extern const std::vector<ComponentCheck> logsChecks;
extern const std::vector<ComponentCheck> rankingChecks;
extern const std::vector<ComponentCheck> recordsChecks;
extern const std::vector<ComponentCheck> restoreChecks;
extern const std::vector<ComponentCheck> restoretextChecks;
extern const std::vector<ComponentCheck> scenesChecks;

}  // namespace validator
