#pragma once

#include <cstdint>
#include <string>

namespace tarn::ThreadUtilities {

/// Gives the calling thread a description (UTF-8) for debuggers, crash tools and its log records.
/// Where the system cannot take one, only the log records carry it.
void setThreadDescription(const std::string& utf8Name);

/// The description of a thread of this process; empty when it has none or cannot be read.
std::string getThreadDescription(std::uint32_t threadId);

/// Appends the description that the calling thread was last given here. Costs no system call unless
/// the text is longer than any that a queue gives.
void appendCurrentThreadName(std::string& text);

/// True when the calling thread was last given exactly this description here.
bool isCurrentThreadName(const std::string& name);

} // namespace tarn::ThreadUtilities
