#include "validator/check/checker.h"
#include "validator/component/groups.h"

int main(int argumentCount, char** arguments) {
    using namespace validator;
    std::vector<RunnableCheck> checks = libraryChecks;
    for (const auto* const group :
         {&basetaskChecks, &countingChecks, &identityChecks, &kindsChecks, &launchChecks,
          &launchFaultsChecks, &materialsChecks, &optionsChecks, &parametersChecks})
        append(checks, *group);
    return checkerMain(argumentCount, arguments, checks);
}
