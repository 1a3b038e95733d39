#pragma once

#include <string>

namespace tarn::platform {

/// The path in the form that wide calls take. One of 248 characters or more (the limit for folders;
/// files have 260) is made absolute and gets the `\\?\` prefix, which lifts the limit. A path with
/// a NUL inside would name another file: it gives the empty text, which names none.
std::wstring systemPath(const std::string& path);
std::wstring systemPath(std::wstring path);

} // namespace tarn::platform
