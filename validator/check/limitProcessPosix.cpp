#include <cstdlib>

#include <sys/resource.h>
#ifdef __linux__
#include <csignal>

#include <sys/prctl.h>
#endif

#include "validator/check/limitProcess.h"

namespace validator {

void limitProcess(const std::filesystem::path& scratch) {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const rlimit fileSize{64 << 20, 64 << 20};
    setrlimit(RLIMIT_FSIZE, &fileSize);
#ifdef VALIDATOR_BOUNDS_MEMORY
    const rlimit memory{rlim_t{4} << 30, rlim_t{4} << 30};
    setrlimit(RLIMIT_AS, &memory);
#endif
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    setenv("TMPDIR", scratch.c_str(), 1);
}

}  // namespace validator
