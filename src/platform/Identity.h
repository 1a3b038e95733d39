#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarn::platform {

/// GetComputerNameW; gethostname on Linux. Nothing when it cannot be read.
std::optional<std::string> computerName();

/// GetUserNameW; the user database's name of the effective user on Linux.
std::optional<std::string> userName();

std::uint32_t processId();

/// False when no process of this computer has the identifier; true also when that cannot be told.
bool isProcessRunning(std::uint32_t processId);

/// The system's identifier of the calling thread, the one a debugger shows. Cached per thread.
std::uint32_t threadId();

/// Full path of the running program's file, UTF-8; empty when it cannot be read.
std::string programFile();

} // namespace tarn::platform
