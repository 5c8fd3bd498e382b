#pragma once

#include <vector>

#include "validator/component/Stage.h"

/// The claims about components, one source for each group; the group is what stands before the dot
/// of an id.
namespace validator {

extern const std::vector<RunnableCheck> libraryChecks;
extern const std::vector<ComponentCheck> basetaskChecks;
extern const std::vector<ComponentCheck> countingChecks;
extern const std::vector<ComponentCheck> eventsChecks;
extern const std::vector<ComponentCheck> failureChecks;
extern const std::vector<ComponentCheck> identityChecks;
extern const std::vector<ComponentCheck> kindsChecks;
extern const std::vector<ComponentCheck> launchChecks;
extern const std::vector<ComponentCheck> launchFaultsChecks;
extern const std::vector<ComponentCheck> listenersChecks;
extern const std::vector<ComponentCheck> materialsChecks;
extern const std::vector<ComponentCheck> mixturesChecks;
extern const std::vector<ComponentCheck> nestingChecks;
extern const std::vector<ComponentCheck> optionsChecks;
extern const std::vector<ComponentCheck> parametersChecks;
extern const std::vector<ComponentCheck> releaseChecks;
extern const std::vector<ComponentCheck> runChecks;
extern const std::vector<ComponentCheck> selectionChecks;
extern const std::vector<ComponentCheck> stopChecks;
extern const std::vector<ComponentCheck> threadsChecks;
extern const std::vector<ComponentCheck> tracesChecks;

}  // namespace validator
