#include "platform/FileIdentity.h"

#include "platform/windows/Handle.h"
#include "platform/windows/SystemError.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

namespace tarn::platform {
namespace {

constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE openForIdentity(const std::string& path, DWORD access, DWORD flags) {
    return CreateFileW(systemPath(path).c_str(), access, kSharedWithAll, nullptr, OPEN_EXISTING,
                       FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
}

std::uint64_t wideNumber(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32U) | low;
}

std::optional<FileIdentity> identify(const Handle& file) {
    BY_HANDLE_FILE_INFORMATION information{};
    if (!file || GetFileInformationByHandle(file.get(), &information) == 0) {
        failedByLastError();
        return std::nullopt;
    }
    const bool isFolder = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return FileIdentity{
        .volume = information.dwVolumeSerialNumber,
        .number = wideNumber(information.nFileIndexHigh, information.nFileIndexLow),
        .size = wideNumber(information.nFileSizeHigh, information.nFileSizeLow),
        .modified = static_cast<std::int64_t>(wideNumber(
            information.ftLastWriteTime.dwHighDateTime, information.ftLastWriteTime.dwLowDateTime)),
        .kind = isFolder                                    ? FileKind::Folder
                : GetFileType(file.get()) == FILE_TYPE_DISK ? FileKind::Ordinary
                                                            : FileKind::Other};
}

} // namespace

std::optional<FileIdentity> identifyFile(const std::string& path) {
    const Handle file(openForIdentity(path, FILE_READ_ATTRIBUTES, 0));
    if (file && GetFileType(file.get()) != FILE_TYPE_DISK) {
        return FileIdentity{}; // a device knows nothing of itself
    }
    return identify(file);
}

bool isLink(const std::string& path) {
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(systemPath(path).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

bool isWriteProtected(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

Removal removeUnchangedFile(const std::string& path, const FileIdentity& expected) {
    // Looked at and removed through one handle: no other file can come in between.
    const Handle file(
        openForIdentity(path, DELETE | FILE_READ_ATTRIBUTES, FILE_FLAG_OPEN_REPARSE_POINT));
    const auto now = identify(file);
    if (now && now != expected) {
        return Removal::Changed;
    }
    FILE_DISPOSITION_INFO remove{};
    remove.DeleteFile = TRUE;
    const bool isDone = now && SetFileInformationByHandle(file.get(), FileDispositionInfo, &remove,
                                                          sizeof(remove)) != 0;
    return isDone ? Removal::Done : Removal::Failed;
}

} // namespace tarn::platform
