#pragma once

namespace tarn::platform {

/// From now on a request to end the process (Ctrl-C, a termination signal, a closing console) only
/// sets a flag, so that the program can stop what it is doing and clean up. Call it before the
/// first thread starts.
void catchInterrupts();

/// True from the first such request on. Any thread.
bool interrupted() noexcept;

} // namespace tarn::platform
