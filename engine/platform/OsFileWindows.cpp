#include "engine/platform/OsFile.h"
#include "platform/Files.h"
#include "platform/windows/SystemError.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>

namespace zelcore {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

int lastErrno() {
    tarn::platform::failedByLastError();
    return errno;
}

HANDLE toHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

int open(const std::string& path, DWORD access, DWORD disposition, DWORD flags,
         std::intptr_t& handle) {
    const HANDLE opened = CreateFileW(tarn::platform::nativePath(path).c_str(), access, kShareAll,
                                      nullptr, disposition, flags, nullptr);
    handle = reinterpret_cast<std::intptr_t>(opened);
    return opened == INVALID_HANDLE_VALUE ? lastErrno() : 0;
}

/// Positioned calls, also on a handle that is opened for plain ones.
OVERLAPPED at(std::uint64_t position) {
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(position);
    overlapped.OffsetHigh = static_cast<DWORD>(position >> 32U);
    return overlapped;
}

DWORD pieceOf(std::size_t size) {
    return static_cast<DWORD>(std::min<std::size_t>(size, 1U << 30U));
}

} // namespace

OsFile& OsFile::operator=(OsFile&& other) noexcept {
    if (this != &other) {
        close();
        mHandle = std::exchange(other.mHandle, kNone);
    }
    return *this;
}

int OsFile::openForReading(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    const int error = open(path, GENERIC_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, handle);
    if (error == 0) {
        file = OsFile(handle);
    }
    return error;
}

int OsFile::openPastCache(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    const int error = open(path, GENERIC_READ, OPEN_EXISTING, FILE_FLAG_NO_BUFFERING, handle);
    if (error == 0) {
        file = OsFile(handle);
    }
    return error;
}

// Whatever is open is in use here: see openToRemove, which shares a file with nobody.
int OsFile::openInUse(const std::string& path, OsFile& file) {
    return openForReading(path, file);
}

int OsFile::openToRemove(const std::string& path, OsFile& file) {
    const HANDLE opened =
        CreateFileW(tarn::platform::nativePath(path).c_str(), GENERIC_READ | DELETE, 0, nullptr,
                    OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        return lastErrno();
    }
    file = OsFile(reinterpret_cast<Handle>(opened));
    return 0;
}

int OsFile::remove(const std::string& /*path*/) {
    FILE_DISPOSITION_INFO disposition{};
    disposition.DeleteFile = TRUE;
    return SetFileInformationByHandle(toHandle(mHandle), FileDispositionInfo, &disposition,
                                      sizeof disposition) != 0
               ? close()
               : lastErrno();
}

int OsFile::createNew(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    const int error =
        open(path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, handle);
    if (error == 0) {
        file = OsFile(handle);
    }
    return error;
}

int OsFile::close() {
    if (mHandle == kNone) {
        return 0;
    }
    return CloseHandle(toHandle(std::exchange(mHandle, kNone))) != 0 ? 0 : lastErrno();
}

std::int64_t OsFile::readAt(std::uint64_t position, void* buffer, std::size_t size,
                            int& error) const {
    OVERLAPPED overlapped = at(position);
    DWORD got = 0;
    if (ReadFile(toHandle(mHandle), buffer, pieceOf(size), &got, &overlapped) != 0) {
        return got;
    }
    if (GetLastError() == ERROR_HANDLE_EOF) {
        return 0;
    }
    error = lastErrno();
    return -1;
}

int OsFile::writeAt(std::uint64_t position, const void* data, std::size_t size) const {
    const auto* bytes = static_cast<const char*>(data);
    while (size > 0) {
        OVERLAPPED overlapped = at(position);
        DWORD put = 0;
        if (WriteFile(toHandle(mHandle), bytes, pieceOf(size), &put, &overlapped) == 0) {
            return lastErrno();
        }
        if (put == 0) {
            return EIO;
        }
        bytes += put;
        size -= put;
        position += put;
    }
    return 0;
}

// The system has no such hints; its own writer begins early, and tells its errors to the sync.
int OsFile::startWriteBack(std::uint64_t /*position*/, std::uint64_t /*size*/) const {
    return 0;
}
int OsFile::awaitWriteBack(std::uint64_t /*position*/, std::uint64_t /*size*/) const {
    return 0;
}

// A file takes over what its folder says, which is what users there know and set.
int OsFile::narrowPermissions(const std::string& /*like*/) const {
    return 0;
}

int OsFile::syncToDisk() const {
    return FlushFileBuffers(toHandle(mHandle)) != 0 ? 0 : lastErrno();
}

int OsFile::backdate() const {
    constexpr std::uint64_t kSecond = 10'000'000;
    FILETIME written{};
    if (GetFileTime(toHandle(mHandle), nullptr, nullptr, &written) == 0) {
        return lastErrno();
    }
    ULARGE_INTEGER time{{written.dwLowDateTime, written.dwHighDateTime}};
    time.QuadPart -= kSecond;
    written = {time.LowPart, time.HighPart};
    return SetFileTime(toHandle(mHandle), nullptr, nullptr, &written) != 0 ? 0 : lastErrno();
}

int OsFile::state(FileState& state) const {
    state = {};
    if (GetFileType(toHandle(mHandle)) != FILE_TYPE_DISK) {
        return 0; // a device or pipe: neither folder nor ordinary
    }
    BY_HANDLE_FILE_INFORMATION found{};
    if (GetFileInformationByHandle(toHandle(mHandle), &found) == 0) {
        return lastErrno();
    }
    const auto wide = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32U | low; };
    state.volume = found.dwVolumeSerialNumber;
    state.number = wide(found.nFileIndexHigh, found.nFileIndexLow);
    state.size = wide(found.nFileSizeHigh, found.nFileSizeLow);
    state.modified = static_cast<std::int64_t>(
        wide(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime));
    state.isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    state.isOrdinary = !state.isFolder;
    return 0;
}

int OsFile::openForState(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    // Attributes alone are granted for files that others have open; the flag admits folders.
    const int error =
        open(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, handle);
    if (error == 0) {
        file = OsFile(handle);
    }
    return error;
}

} // namespace zelcore
