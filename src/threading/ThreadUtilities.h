#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::ThreadUtilities {

/// Gives the calling thread a description (UTF-8) for debuggers, crash tools and its log records.
/// Where the system cannot take one, only the log records carry it.
void setThreadDescription(const std::string& utf8Name);

/// The description of a thread of this process; empty when it has none or cannot be read.
std::string getThreadDescription(std::uint32_t threadId);

/// The description that the calling thread was last given here. A text that is longer than any that
/// a queue gives has to be asked of the system, and is put into `whenLong`.
std::string_view currentThreadName(std::string& whenLong);

/// True when the calling thread was last given exactly this description here.
bool isCurrentThreadName(const std::string& name);

} // namespace tarn::ThreadUtilities
