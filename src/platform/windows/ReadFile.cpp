#include "platform/ReadFile.h"

#include "platform/windows/SystemError.h"

#include <windows.h>

#include <algorithm>
#include <bit>

namespace tarn::platform {
namespace {

constexpr std::size_t kMostAtOnce = 1U << 30U; // the system's call counts in 32 bits
constexpr std::int64_t kUnixEpochAsFileTime = 116'444'736'000'000'000;
constexpr std::int64_t kUnitsPerSecond = 10'000'000;

} // namespace

ReadFile::~ReadFile() {
    if (isOpen()) {
        CloseHandle(std::bit_cast<HANDLE>(mHandle));
    }
}

std::uint64_t ReadFile::size() const {
    LARGE_INTEGER size{};
    return GetFileSizeEx(std::bit_cast<HANDLE>(mHandle), &size) != 0
               ? static_cast<std::uint64_t>(size.QuadPart)
               : 0;
}

std::int64_t ReadFile::modified() const {
    FILETIME time{};
    if (GetFileTime(std::bit_cast<HANDLE>(mHandle), nullptr, nullptr, &time) == 0) {
        return 0;
    }
    const std::int64_t units = (std::int64_t{time.dwHighDateTime} << 32U) | time.dwLowDateTime;
    return (units - kUnixEpochAsFileTime) / kUnitsPerSecond;
}

std::ptrdiff_t ReadFile::read(char* buffer, std::size_t capacity) {
    DWORD got = 0;
    if (::ReadFile(std::bit_cast<HANDLE>(mHandle), buffer,
                   static_cast<DWORD>(std::min(capacity, kMostAtOnce)), &got, nullptr) == 0) {
        failedByLastError();
        return -1;
    }
    return static_cast<std::ptrdiff_t>(got);
}

} // namespace tarn::platform
