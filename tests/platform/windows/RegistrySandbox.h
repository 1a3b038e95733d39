#pragma once

#include <gmock/gmock.h>
#include <windows.h>

#include <string>

namespace tarn::platform::testing {

/// Gives the process a current-user and a local-machine root of its own, empty at first, so that
/// tests change nothing of the machine and not each other's values.
class RegistrySandbox {
public:
    RegistrySandbox() {
        // Without its providers' settings the system can check no signature.
        const std::wstring providers = L"Software\\Microsoft\\Cryptography";
        HKEY copied = create(HKEY_CURRENT_USER, mPath + L"\\machine\\" + providers);
        RegCopyTreeW(HKEY_LOCAL_MACHINE, providers.c_str(), copied);
        RegCloseKey(copied);
        HKEY user = create(HKEY_CURRENT_USER, mPath + L"\\user");
        HKEY machine = create(HKEY_CURRENT_USER, mPath + L"\\machine");
        EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, user), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine), ERROR_SUCCESS);
        RegCloseKey(user);
        RegCloseKey(machine);
    }
    ~RegistrySandbox() {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegDeleteTreeW(HKEY_CURRENT_USER, mPath.c_str());
    }
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

    static void setBytes(HKEY root, const std::wstring& key, const wchar_t* value, DWORD type,
                         const void* data, std::size_t size) {
        HKEY opened = create(root, key);
        EXPECT_EQ(RegSetValueExW(opened, value, 0, type, static_cast<const BYTE*>(data),
                                 static_cast<DWORD>(size)),
                  ERROR_SUCCESS);
        RegCloseKey(opened);
    }
    static void setText(HKEY root, const std::wstring& key, const wchar_t* value,
                        const std::wstring& text, DWORD type = REG_SZ) {
        setBytes(root, key, value, type, text.data(), text.size() * sizeof(wchar_t));
    }
    static void setNumber(HKEY root, const std::wstring& key, const wchar_t* value, DWORD number) {
        setBytes(root, key, value, REG_DWORD, &number, sizeof(number));
    }

private:
    static HKEY create(HKEY root, const std::wstring& key) {
        HKEY opened = nullptr;
        EXPECT_EQ(RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                  &opened, nullptr),
                  ERROR_SUCCESS);
        return opened;
    }

    std::wstring mPath =
        L"Software\\RecordConverterTests\\" + std::to_wstring(GetCurrentProcessId());
};

} // namespace tarn::platform::testing
