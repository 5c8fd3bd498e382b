#pragma once

#include <vector>

#include "validator/component/Stage.h"

/// The claims about components, one source for each group; the group is what stands before the dot
/// of an id.
namespace validator {

extern const std::vector<RunnableCheck> libraryChecks;
extern const std::vector<ComponentCheck> basetaskChecks;
extern const std::vector<ComponentCheck> cachewriteChecks;
extern const std::vector<ComponentCheck> countingChecks;
extern const std::vector<ComponentCheck> durationChecks;
extern const std::vector<ComponentCheck> entropyChecks;
extern const std::vector<ComponentCheck> eventsChecks;
extern const std::vector<ComponentCheck> facerectChecks;
extern const std::vector<ComponentCheck> facesChecks;
extern const std::vector<ComponentCheck> failureChecks;
extern const std::vector<ComponentCheck> identityChecks;
extern const std::vector<ComponentCheck> keyframesChecks;
extern const std::vector<ComponentCheck> kindsChecks;
extern const std::vector<ComponentCheck> launchChecks;
extern const std::vector<ComponentCheck> launchFaultsChecks;
extern const std::vector<ComponentCheck> listenersChecks;
extern const std::vector<ComponentCheck> logsChecks;
extern const std::vector<ComponentCheck> materialsChecks;
extern const std::vector<ComponentCheck> mixturesChecks;
extern const std::vector<ComponentCheck> nestingChecks;
extern const std::vector<ComponentCheck> optionsChecks;
extern const std::vector<ComponentCheck> parametersChecks;
extern const std::vector<ComponentCheck> rankingChecks;
extern const std::vector<ComponentCheck> recordsChecks;
extern const std::vector<ComponentCheck> releaseChecks;
extern const std::vector<ComponentCheck> restoreChecks;
extern const std::vector<ComponentCheck> restoretextChecks;
extern const std::vector<ComponentCheck> runChecks;
extern const std::vector<ComponentCheck> scenesChecks;
extern const std::vector<ComponentCheck> selectionChecks;
extern const std::vector<ComponentCheck> stopChecks;
extern const std::vector<ComponentCheck> threadsChecks;
extern const std::vector<ComponentCheck> tracesChecks;

}  // namespace validator
