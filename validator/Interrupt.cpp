#include "validator/Interrupt.h"

#include <atomic>
#include <csignal>

namespace validator {
namespace {

std::atomic<bool> hasCome{false};
static_assert(std::atomic<bool>::is_always_lock_free, "only such a one is safe in a handler");

extern "C" void noteSignal(int signal) {
    std::signal(signal, SIG_DFL);
    hasCome = true;
}

void notice(int signal) {
    if (std::signal(signal, noteSignal) == SIG_IGN) std::signal(signal, SIG_IGN);
}

}  // namespace

void noticeInterrupts() {
    notice(SIGINT);
    notice(SIGTERM);
#ifdef SIGHUP
    notice(SIGHUP);
#endif
}

bool isInterrupted() {
    return hasCome;
}

}  // namespace validator
