#include "platform/AppendFile.h"

#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace tarn::platform {
namespace {

static_assert(sizeof(HANDLE) == sizeof(std::intptr_t));

constexpr std::size_t kMostAtOnce = 1U << 30U; // WriteFile counts in 32 bits

} // namespace

bool AppendFile::open(const std::string& path, Existing existing) {
    close();
    mHandle = std::bit_cast<std::intptr_t>(
        CreateFileW(systemPath(path).c_str(), FILE_APPEND_DATA | SYNCHRONIZE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    existing == Existing::Emptied ? CREATE_ALWAYS : OPEN_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL, nullptr));
    if (mHandle != kNone && GetFileType(std::bit_cast<HANDLE>(mHandle)) != FILE_TYPE_DISK) {
        close();
    }
    return mHandle != kNone;
}

std::size_t AppendFile::write(std::string_view bytes) {
    std::size_t taken = 0;
    while (taken < bytes.size()) {
        const auto size = static_cast<DWORD>(std::min(bytes.size() - taken, kMostAtOnce));
        DWORD put = 0;
        if (WriteFile(std::bit_cast<HANDLE>(mHandle), bytes.data() + taken, size, &put, nullptr) ==
                0 ||
            put == 0) {
            break;
        }
        taken += put;
    }
    return taken;
}

std::int64_t AppendFile::size() const {
    LARGE_INTEGER size{};
    return GetFileSizeEx(std::bit_cast<HANDLE>(mHandle), &size) != 0 ? size.QuadPart : 0;
}

bool AppendFile::close() {
    const std::intptr_t handle = std::exchange(mHandle, kNone);
    return handle != kNone && CloseHandle(std::bit_cast<HANDLE>(handle)) != 0;
}

} // namespace tarn::platform
