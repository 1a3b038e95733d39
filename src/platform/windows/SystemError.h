#pragma once

namespace tarn::platform {

/// Puts the errno value that says the same as the calling thread's last error into errno, as the C
/// library does after its own calls. Returns false, for `return failedByLastError();`.
bool failedByLastError();

} // namespace tarn::platform
