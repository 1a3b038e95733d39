#include "platform/FileLock.h"

#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <bit>
#include <utility>

namespace tarn::platform {

FileLock::Result FileLock::take(const std::string& path) {
    release();
    HANDLE file =
        CreateFileW(systemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_SHARING_VIOLATION ? Result::Held : Result::Unavailable;
    }
    mHandle = std::bit_cast<std::intptr_t>(file);
    return Result::Taken;
}

void FileLock::release() {
    if (const std::intptr_t file = std::exchange(mHandle, kNone); file != kNone) {
        CloseHandle(std::bit_cast<HANDLE>(file));
    }
}

} // namespace tarn::platform
