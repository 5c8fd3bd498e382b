#include "validator/check/checker.h"
#include "validator/component/groups.h"

int main(int argumentCount, char** arguments) {
    using namespace validator;
    std::vector<RunnableCheck> checks = libraryChecks;
    for (const auto* const group :
         {&basetaskChecks,   &cachewriteChecks,   &countingChecks,  &durationChecks,
          &entropyChecks,    &eventsChecks,       &facerectChecks,  &facesChecks,
          &failureChecks,    &identityChecks,     &keyframesChecks, &kindsChecks,
          &launchChecks,     &launchFaultsChecks, &listenersChecks, &logsChecks,
          &materialsChecks,  &mixturesChecks,     &nestingChecks,   &optionsChecks,
          &parametersChecks, &rankingChecks,      &recordsChecks,   &releaseChecks,
          &restoreChecks,    &restoretextChecks,  &runChecks,       &scenesChecks,
          &selectionChecks,  &stopChecks,         &threadsChecks,   &tracesChecks})
        append(checks, *group);
    return checkerMain(argumentCount, arguments, checks);
}
