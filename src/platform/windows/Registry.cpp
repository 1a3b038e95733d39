#include "platform/Registry.h"

#include <windows.h>

namespace tarn::platform {
namespace {

HKEY rootKey(RegistryRoot root) {
    return root == RegistryRoot::CurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

std::optional<std::wstring> readText(HKEY key, const wchar_t* subKey, const std::wstring& value) {
    DWORD type = REG_NONE;
    DWORD size = 0; // bytes
    LSTATUS status = RegGetValueW(key, subKey, value.c_str(), RRF_RT_ANY, &type, nullptr, &size);
    std::wstring text;
    // The value may grow between the two calls.
    while (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
        if (type != REG_SZ && type != REG_EXPAND_SZ) {
            return std::nullopt;
        }
        text.resize(size / sizeof(wchar_t) + 1);
        size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        status = RegGetValueW(key, subKey, value.c_str(), RRF_RT_ANY, &type, text.data(), &size);
        if (status == ERROR_SUCCESS) {
            text.resize(size / sizeof(wchar_t));
            text.resize(text.find_last_not_of(L'\0') + 1);
            return text;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::wstring> registryText(RegistryRoot root, RegistryView view,
                                         const std::wstring& key, const std::wstring& value) {
    if (view == RegistryView::Default) {
        return readText(rootKey(root), key.c_str(), value);
    }
    HKEY opened = nullptr;
    if (RegOpenKeyExW(rootKey(root), key.c_str(), 0, KEY_READ | KEY_WOW64_64KEY, &opened) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    auto text = readText(opened, nullptr, value);
    RegCloseKey(opened);
    return text;
}

std::optional<std::uint32_t> registryNumber(RegistryRoot root, const std::wstring& key,
                                            const std::wstring& value) {
    std::uint32_t number = 0;
    DWORD size = sizeof(number);
    if (RegGetValueW(rootKey(root), key.c_str(), value.c_str(), RRF_RT_ANY, nullptr, &number,
                     &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return number;
}

} // namespace tarn::platform
