#pragma once

#include <cstdint>
#include <string>

namespace tarn::platform {

/// Sets the calling thread's description (UTF-8) for debuggers and crash tools. Does nothing where
/// the system cannot. Windows: SetThreadDescription, looked up once in Kernel32. Linux: prctl takes
/// the first 15 bytes, the full text is kept beside it.
void setThreadDescription(const std::string& utf8Name);

/// Description of a thread of this process, UTF-8; empty when it cannot be read. Any thread.
std::string getThreadDescription(std::uint32_t threadId);

} // namespace tarn::platform
