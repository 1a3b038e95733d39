#pragma once

namespace tarn::platform {

/// Address of a function of Kernel32 that older systems lack; null, and an Error line, when it is
/// missing. A library that gave an address is never released.
void* loadKernel32Function(const char* name);

} // namespace tarn::platform
