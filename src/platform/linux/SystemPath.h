#pragma once

#include <string>

namespace tarn::platform {

/// The text that system calls take; that of a path with a NUL inside is empty and names no file.
const char* systemPath(const std::string& path);

} // namespace tarn::platform
