#pragma once

#include <string>

namespace tarn::loader {

/// Not empty and free of "..", <, >, ", /, |, ? and *.
bool isValidPath(const std::wstring& path);

/// A valid path that begins with a letter, ':' and '\'.
bool isAbsoluteDrivePath(const std::wstring& path);

/// Up to and including the last separator.
std::wstring parentFolder(const std::wstring& path);

/// A name of its own, not empty and without a separator.
bool isBareName(const std::wstring& name);

} // namespace tarn::loader
