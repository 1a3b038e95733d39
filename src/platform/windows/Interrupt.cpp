#include "platform/Interrupt.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>

namespace tarn::platform {
namespace {

std::atomic<bool> wasInterrupted{false};
std::atomic<void (*)()> beforeLeaving{nullptr};

/// The handler that was set last is asked first; FALSE passes the event on to the launcher's.
BOOL WINAPI onInterruption(DWORD /*event*/) {
    if (auto* const call = beforeLeaving.load()) {
        call();
    }
    return FALSE;
}

BOOL WINAPI onConsoleEvent(DWORD event) {
    wasInterrupted.store(true, std::memory_order_relaxed);
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        // The system ends the process as soon as the handler of a closing console returns: leave
        // the few seconds it grants to the thread that cleans up and exits.
        Sleep(INFINITE);
    }
    return TRUE;
}

} // namespace

void catchInterrupts() {
    // A process started in a new group ignores Ctrl-C until told otherwise.
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

bool interrupted() noexcept {
    return wasInterrupted.load(std::memory_order_relaxed);
}

void leaveAtOnce(int status) {
    std::_Exit(status);
}

void callBeforeLeaving(void (*call)()) {
    beforeLeaving.store(call);
    SetConsoleCtrlHandler(onInterruption, TRUE);
}

} // namespace tarn::platform
