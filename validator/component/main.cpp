#include "validator/check/checker.h"
#include "validator/component/groups.h"

int main(int argumentCount, char** arguments) {
    using namespace validator;
    std::vector<RunnableCheck> checks = libraryChecks;
    for (const auto* const group :
         {&basetaskChecks,  &countingChecks,   &eventsChecks,   &failureChecks,
          &identityChecks,  &kindsChecks,      &launchChecks,   &launchFaultsChecks,
          &listenersChecks, &materialsChecks,  &mixturesChecks, &nestingChecks,
          &optionsChecks,   &parametersChecks, &releaseChecks,  &runChecks,
          &selectionChecks, &stopChecks,       &threadsChecks,  &tracesChecks})
        append(checks, *group);
    return checkerMain(argumentCount, arguments, checks);
}
