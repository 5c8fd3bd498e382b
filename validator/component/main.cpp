#include "validator/check/checker.h"
#include "validator/component/groups.h"

int main(int argumentCount, char** arguments) {
    using namespace validator;
    std::vector<RunnableCheck> checks = libraryChecks;
    for (const auto* const group :
         {&cachewriteChecks, &durationChecks, &entropyChecks, &facerectChecks, &facesChecks,
          &identityChecks, &keyframesChecks, &logsChecks, &rankingChecks, &recordsChecks,
          &restoreChecks, &restoretextChecks, &scenesChecks})
        append(checks, *group);
    return checkerMain(argumentCount, arguments, checks);
}
