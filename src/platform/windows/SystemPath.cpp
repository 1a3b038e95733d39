#include "platform/windows/SystemPath.h"

#include "platform/Text.h"

#include <windows.h>

namespace tarn::platform {
namespace {

constexpr std::size_t kLongPath = 248;

std::wstring fullPath(const std::wstring& path) {
    std::wstring full(kLongPath, L'\0');
    while (true) {
        const DWORD length =
            GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (length == 0) {
            return path;
        }
        const bool whole = length < full.size();
        full.resize(length);
        if (whole) {
            return full;
        }
    }
}

} // namespace

std::wstring systemPath(std::wstring path) {
    if (path.find(L'\0') != std::wstring::npos) {
        return {};
    }
    const bool isDrivePath = path.size() > 2 && path[1] == L':';
    const bool isPrefixed = path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
    if (path.empty() || isPrefixed || (isDrivePath && path.size() < kLongPath)) {
        return path;
    }
    // The prefix also turns off the reading of '/', "." and "..", so those are resolved first.
    std::wstring full = fullPath(path);
    if (full.size() < kLongPath) {
        return path;
    }
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

std::wstring systemPath(const std::string& path) {
    return systemPath(toWide(path));
}

} // namespace tarn::platform
