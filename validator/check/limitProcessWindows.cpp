#include <windows.h>

#include "validator/check/limitProcess.h"

namespace validator {

void limitProcess(const std::filesystem::path& scratch) {
    // Neither a box that waits for someone to click it, nor a report, when the process crashes.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    _wputenv_s(L"TMP", scratch.c_str());
}

}  // namespace validator
