#include <cstdio>
#include <cstdlib>

#include "validator/check/checker.h"
#include "validator/host/groups.h"

int main(int argumentCount, char** arguments) {
    using namespace validator;
    std::vector<RunnableCheck> checks = hostLibraryChecks;
    for (const auto* const group :
         {&listChecks, &geometryChecks, &pathChecks, &loggerChecks, &mediaChecks, &mediaInfoChecks,
          &taskChecks, &listenerChecks, &eventChecks, &resultChecks, &sceneChecks, &pictureChecks,
          &failedChecks, &stopChecks, &restartChecks, &destructionChecks, &threadChecks,
          &hostingChecks})
        append(checks, *group);
    const int exitCode = checkerMain(argumentCount, arguments, checks);
    // At once: runs that were given up may go on for a while, and nothing says that a host can be
    // taken down under them.
    std::fflush(nullptr);
    std::_Exit(exitCode);
}
