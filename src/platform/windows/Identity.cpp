#include "platform/Identity.h"

#include "platform/Text.h"

#include <windows.h>

#include <array>
#include <lmcons.h>

namespace tarn::platform {

std::optional<std::string> computerName() {
    std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name{};
    auto size = static_cast<DWORD>(name.size());
    if (GetComputerNameW(name.data(), &size) == 0) {
        return std::nullopt;
    }
    return toUtf8({name.data(), size}); // counted without its NUL
}

std::optional<std::string> userName() {
    std::array<wchar_t, UNLEN + 1> name{};
    auto size = static_cast<DWORD>(name.size());
    if (GetUserNameW(name.data(), &size) == 0 || size == 0) {
        return std::nullopt;
    }
    return toUtf8({name.data(), size - 1}); // counted with its NUL
}

std::vector<std::string> otherPersonalTexts() {
    return {};
}

std::uint32_t processId() {
    return GetCurrentProcessId();
}

bool isProcessRunning(std::uint32_t processId) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
    if (process == nullptr) {
        return GetLastError() != ERROR_INVALID_PARAMETER;
    }
    // An ended process keeps its identifier while somebody holds a handle to it.
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    return code == STILL_ACTIVE;
}

std::uint32_t threadId() {
    return GetCurrentThreadId(); // a read of the thread's own block, nothing to cache
}

std::string programFile() {
    std::wstring path(MAX_PATH, L'\0');
    while (true) {
        const DWORD length =
            GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            return {};
        }
        if (length < path.size()) {
            path.resize(length);
            return toUtf8(path);
        }
        path.resize(path.size() * 2); // truncated
    }
}

} // namespace tarn::platform
