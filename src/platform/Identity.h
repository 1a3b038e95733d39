#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn::platform {

/// GetComputerNameW; gethostname on Linux. Nothing when it cannot be read.
std::optional<std::string> computerName();

/// GetUserNameW; the user database's name of the effective user on Linux.
std::optional<std::string> userName();

/// What else names the person at the computer: on Linux the home folder of the user database, and
/// name and home folder of the user who started the program by sudo and its like.
std::vector<std::string> otherPersonalTexts();

std::uint32_t processId();

/// False when no process of this computer has the identifier; true also when that cannot be told.
bool isProcessRunning(std::uint32_t processId);

/// The system's identifier of the calling thread, the one a debugger shows. Cached per thread.
std::uint32_t threadId();

/// Full path of the running program's file, UTF-8; empty when it cannot be read.
std::string programFile();

} // namespace tarn::platform
