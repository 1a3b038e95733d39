#include "platform/Files.h"

#include "platform/Text.h"
#include "platform/Wildcard.h"
#include "platform/windows/Handle.h"
#include "platform/windows/SystemError.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <cstdio>
#include <direct.h>

namespace tarn::platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// File times count from 1601.
constexpr std::int64_t kUnixEpochAsFileTime = 116'444'736'000'000'000;

std::int64_t inUnits(const FILETIME& time) {
    return ((std::int64_t{time.dwHighDateTime} << 32U) | time.dwLowDateTime) - kUnixEpochAsFileTime;
}

template <typename Information>
FileDetails detailsFrom(const Information& information) {
    return {.size = (std::uint64_t{information.nFileSizeHigh} << 32U) | information.nFileSizeLow,
            .accessed = inUnits(information.ftLastAccessTime),
            .modified = inUnits(information.ftLastWriteTime),
            .created = inUnits(information.ftCreationTime),
            .isFolder = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0};
}

/// The empty folder has no entries: its name and a separator would be the root of the drive.
std::wstring pathIn(const std::string& folder, const std::string& name) {
    return folder.empty() ? std::wstring() : systemPath(folder + '\\' + name);
}

/// Asks for nothing but attributes, which is granted for files that others have open.
HANDLE openForAttributes(const std::string& path) {
    return CreateFileW(systemPath(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                       OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

bool isFolder(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool isLinkToFolder(DWORD attributes, DWORD reparseTag) {
    return isFolder(attributes) && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (reparseTag == IO_REPARSE_TAG_SYMLINK || reparseTag == IO_REPARSE_TAG_MOUNT_POINT);
}

std::string folded(std::wstring text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return toUtf8(text);
}

/// The system's own matching also tries the hidden short names, by which "*.txt" finds "a.txt2".
bool matches(const wchar_t* name, const std::string& foldedPattern) {
    return foldedPattern == "*" || foldedPattern == "*.*" ||
           matchesWildcard(folded(name), foldedPattern);
}

} // namespace

std::uint32_t lastFileError() {
    return GetLastError();
}

// The C library's _wstat64 counts whole seconds, keeps links closed and refuses `\\?\` for its
// question mark; these calls do none of that.
std::optional<FileDetails> fileDetails(const std::string& path) {
    BY_HANDLE_FILE_INFORMATION information{};
    const Handle file(openForAttributes(path));
    if (file && GetFileInformationByHandle(file.get(), &information) != 0) {
        return detailsFrom(information);
    }
    // Some files cannot be opened at all (the page file), but asked for.
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    if (GetFileAttributesExW(systemPath(path).c_str(), GetFileExInfoStandard, &attributes) != 0) {
        return detailsFrom(attributes);
    }
    failedByLastError();
    return std::nullopt;
}

std::optional<std::vector<FolderEntry>> listFolder(const std::string& folder,
                                                   std::string_view pattern) {
    WIN32_FIND_DATAW found{};
    HANDLE handle = FindFirstFileW(pathIn(folder, "*").c_str(), &found);
    if (handle == INVALID_HANDLE_VALUE) {
        failedByLastError();
        return std::nullopt;
    }
    const std::string foldedPattern = folded(toWide(pattern));
    std::vector<FolderEntry> entries;
    do {
        const std::wstring_view name = found.cFileName;
        if (name != L"." && name != L".." && matches(found.cFileName, foldedPattern)) {
            const bool isLink = isLinkToFolder(found.dwFileAttributes, found.dwReserved0);
            entries.push_back({.name = toUtf8(name),
                               .modified = inUnits(found.ftLastWriteTime),
                               .isFolder = isFolder(found.dwFileAttributes) && !isLink,
                               .isLinkToFolder = isLink});
        }
    } while (FindNextFileW(handle, &found) != 0);
    const bool whole = GetLastError() == ERROR_NO_MORE_FILES;
    if (!whole) {
        failedByLastError();
    }
    FindClose(handle);
    return whole ? std::optional(std::move(entries)) : std::nullopt;
}

bool removeFile(const std::string& path) {
    const std::wstring file = systemPath(path);
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
        (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return _wrmdir(file.c_str()) == 0; // removes the link to a folder, not the folder
    }
    return _wremove(file.c_str()) == 0;
}

bool removeEmptyFolder(const std::string& path) {
    return _wrmdir(systemPath(path).c_str()) == 0;
}

bool makeFolder(const std::string& path) {
    return _wmkdir(systemPath(path).c_str()) == 0;
}

bool renamePath(const std::string& from, const std::string& to) {
    const std::wstring source = systemPath(from);
    const std::wstring target = systemPath(to);
    if (MoveFileExW(source.c_str(), target.c_str(), 0) != 0) {
        return true;
    }
    const DWORD error = GetLastError();
    // A file may go to another drive, as by the C library; for a folder that is the error.
    if (error == ERROR_NOT_SAME_DEVICE && !isFolder(GetFileAttributesW(source.c_str())) &&
        MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_COPY_ALLOWED) != 0) {
        return true;
    }
    SetLastError(error);
    return failedByLastError();
}

bool makeHardLink(const std::string& existing, const std::string& link) {
    return CreateHardLinkW(systemPath(link).c_str(), systemPath(existing).c_str(), nullptr) != 0 ||
           failedByLastError();
}

bool isSameFile(const std::string& left, const std::string& right) {
    const Handle leftFile(openForAttributes(left));
    const Handle rightFile(openForAttributes(right));
    BY_HANDLE_FILE_INFORMATION first{};
    BY_HANDLE_FILE_INFORMATION second{};
    if (!leftFile || !rightFile || GetFileInformationByHandle(leftFile.get(), &first) == 0 ||
        GetFileInformationByHandle(rightFile.get(), &second) == 0) {
        return failedByLastError();
    }
    return first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
}

bool isFolderWritable(const std::string& folder) {
    const std::string probe =
        ".rc-" + std::to_string(GetCurrentProcessId()) + '-' + std::to_string(GetCurrentThreadId());
    const Handle file(CreateFileW(pathIn(folder, probe).c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
                                  CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE,
                                  nullptr));
    return file || failedByLastError();
}

std::optional<std::string> placeThatOthersCanChange(const std::string& /*folder*/) {
    return std::nullopt;
}

std::filesystem::path nativePath(const std::string& path) {
    return systemPath(path);
}

} // namespace tarn::platform
