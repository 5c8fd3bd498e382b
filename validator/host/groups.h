#pragma once

#include <vector>

#include "validator/host/HostLibrary.h"

/// The claims about hosts, one source for each group; the group is what stands before the dot of an
/// id.
namespace validator {

extern const std::vector<RunnableCheck> hostLibraryChecks;
extern const std::vector<HostCheck> listChecks;
extern const std::vector<HostCheck> geometryChecks;
extern const std::vector<HostCheck> pathChecks;
extern const std::vector<HostCheck> loggerChecks;
extern const std::vector<HostCheck> mediaChecks;
extern const std::vector<HostCheck> mediaInfoChecks;
extern const std::vector<HostCheck> taskChecks;
extern const std::vector<HostCheck> listenerChecks;
extern const std::vector<HostCheck> eventChecks;
extern const std::vector<HostCheck> resultChecks;
extern const std::vector<HostCheck> sceneChecks;
extern const std::vector<HostCheck> pictureChecks;
extern const std::vector<HostCheck> failedChecks;
extern const std::vector<HostCheck> stopChecks;
extern const std::vector<HostCheck> restartChecks;
extern const std::vector<HostCheck> destructionChecks;
extern const std::vector<HostCheck> threadChecks;
extern const std::vector<HostCheck> hostingChecks;

}  // namespace validator
