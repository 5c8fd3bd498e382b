#include "validator/host/Patience.h"

#include <atomic>
#include <exception>
#include <memory>
#include <thread>
#include <utility>

#include "validator/check/expect.h"
#include "validator/host/Flag.h"

namespace validator {
namespace {

std::atomic<bool> isSomethingStuck{false};

}  // namespace

void failForTime(const std::string& what, const std::string& found) {
    isSomethingStuck = true;
    fail(what, "within " + std::to_string(patience.count()) + " s", found);
}

bool isStuck() {
    return isSomethingStuck;
}

void expectReturn(const std::string& what, std::function<void()> action) {
    struct Call {
        Flag hasReturned;
        std::exception_ptr problem;
    };
    const auto call = std::make_shared<Call>();
    std::thread thread([call, action = std::move(action)] {
        try {
            action();
        } catch (...) {
            call->problem = std::current_exception();
        }
        call->hasReturned.set();
    });
    if (!call->hasReturned.isSetWithin(patience)) {
        thread.detach();
        failForTime("the return of " + what, "not by then");
    }
    thread.join();
    if (call->problem) std::rethrow_exception(call->problem);
}

}  // namespace validator
