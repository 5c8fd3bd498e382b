#include "autotrim/InterruptWatch.h"

#include <utility>

#include <unistd.h>

#include "autotrim/ExitCode.h"

namespace autotrim {

InterruptWatch::InterruptWatch(std::function<void()> onInterrupt)
    : onInterrupt_(std::move(onInterrupt)) {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGINT);
    sigaddset(&signals_, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
    thread_ = std::thread([this] { watch(); });
}

InterruptWatch::~InterruptWatch() {
    done_ = true;
    pthread_kill(thread_.native_handle(), SIGINT);
    thread_.join();
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void InterruptWatch::watch() {
    for (bool first = true;; first = false) {
        int signal = 0;
        sigwait(&signals_, &signal);
        if (done_) return;
        if (!first || !working_) _exit(exitInterrupted);
        onInterrupt_();
    }
}

}  // namespace autotrim
