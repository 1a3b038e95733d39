#pragma once

namespace tarn::platform {

/// From now on a request to end the process (Ctrl-C, a termination signal, a closing console) only
/// sets a flag, so that the program can stop what it is doing and clean up. Call it before the
/// first thread starts.
void catchInterrupts();

/// True from the first such request on. Any thread.
bool interrupted() noexcept;

/// Ends the process without its exit handlers and destructors, which would take away what other
/// threads are using.
[[noreturn]] void leaveAtOnce(int status);

/// Has `call` run before an interrupted process is left, whichever of its modules leaves it: on
/// Linux inside leaveAtOnce, on Windows, whose runtime knows no such hook, at the console's
/// notice of the interruption. `call` must be bounded in time and may run on any thread.
void callBeforeLeaving(void (*call)());

} // namespace tarn::platform
