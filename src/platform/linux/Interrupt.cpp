#include "platform/Interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace tarn::platform {
namespace {

std::atomic<bool> wasInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set inside a signal handler");

void onSignal(int /*signal*/) {
    wasInterrupted.store(true, std::memory_order_relaxed);
}

} // namespace

void catchInterrupts() {
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // A closing terminal counts too, unless the caller asked to outlive it (nohup).
    struct sigaction current = {};
    if (sigaction(SIGHUP, nullptr, &current) == 0 && current.sa_handler != SIG_IGN) {
        sigaction(SIGHUP, &action, nullptr);
    }
    // A reader of our output that goes away is no reason to leave a conversion half done.
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

bool interrupted() noexcept {
    return wasInterrupted.load(std::memory_order_relaxed);
}

void leaveAtOnce(int status) {
    std::quick_exit(status);
}

void callBeforeLeaving(void (*call)()) {
    static_cast<void>(std::at_quick_exit(call)); // fails only for want of memory
}

} // namespace tarn::platform
