#include "platform/OpenFolder.h"

#include "platform/windows/SystemError.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <bit>
#include <cerrno>
#include <direct.h>
#include <utility>

namespace tarn::platform {
namespace {

constexpr int kFolderNamesTried = 100;
constexpr DWORD kFolder = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;

HANDLE handleOf(std::intptr_t handle) {
    return std::bit_cast<HANDLE>(handle);
}

/// Opens what has the attribute of a folder or has not, and is no link of any kind.
std::intptr_t openPlain(const std::string& path, DWORD access, DWORD sharing, bool isFolder) {
    HANDLE handle = CreateFileW(systemPath(path).c_str(), access, sharing, nullptr, OPEN_EXISTING,
                                kFolder, nullptr);
    BY_HANDLE_FILE_INFORMATION found{};
    if (handle == INVALID_HANDLE_VALUE) {
        failedByLastError();
    } else if (GetFileType(handle) != FILE_TYPE_DISK ||
               GetFileInformationByHandle(handle, &found) == 0 ||
               (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ||
               ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) != isFolder) {
        CloseHandle(std::exchange(handle, INVALID_HANDLE_VALUE));
        SetLastError(ERROR_DIRECTORY);
        failedByLastError();
    }
    return std::bit_cast<std::intptr_t>(handle);
}

/// Nobody can move or remove the folder as long as this is open: deleting is not shared.
std::intptr_t openFolder(const std::string& path, DWORD sharing) {
    return openPlain(path, FILE_LIST_DIRECTORY | FILE_TRAVERSE, sharing, true);
}

constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE;

} // namespace

std::unique_ptr<OpenFolder> OpenFolder::open(const std::string& path) {
    const std::intptr_t folder = openFolder(path, kShared);
    return folder == -1 ? nullptr : std::unique_ptr<OpenFolder>(new OpenFolder(path, folder));
}

std::unique_ptr<OpenFolder> OpenFolder::makePrivate(const std::string& parent,
                                                    const std::string& prefix) {
    for (int tries = 0; tries < kFolderNamesTried; ++tries) {
        const std::string path = parent + '\\' + unforeseeableName(prefix);
        if (_wmkdir(systemPath(path).c_str()) == 0) {
            if (auto folder = open(path)) {
                return folder;
            }
        } else if (errno != EEXIST) {
            break;
        }
    }
    return nullptr;
}

std::unique_ptr<OpenFolder> OpenFolder::openLeftover(const std::string& path) {
    // Asking for the right to delete fails while somebody's handle does not share it.
    const std::intptr_t probe = openPlain(path, DELETE, kShared | FILE_SHARE_DELETE, true);
    if (probe == -1) {
        return nullptr;
    }
    CloseHandle(handleOf(probe));
    return open(path);
}

OpenFolder::~OpenFolder() {
    close();
}

void OpenFolder::close() {
    if (const std::intptr_t handle = std::exchange(mHandle, -1); handle != -1) {
        CloseHandle(handleOf(handle));
    }
}

std::optional<std::vector<FolderEntry>> OpenFolder::entries() const {
    return listFolder(mPath);
}

std::unique_ptr<OpenFolder> OpenFolder::folder(const std::string& name) const {
    return open(mPath + '\\' + name);
}

std::intptr_t OpenFolder::openFile(const std::string& name) const {
    return openPlain(mPath + '\\' + name, GENERIC_READ, kShared | FILE_SHARE_DELETE, false);
}

bool OpenFolder::copyIn(const std::string& from, const std::string& name) const {
    const std::wstring target = systemPath(mPath + '\\' + name);
    if (CopyFileW(systemPath(from).c_str(), target.c_str(), TRUE) == 0) {
        return failedByLastError();
    }
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL); // a copied read-only flag
    return true;
}

bool OpenFolder::makeFolder(const std::string& name) const {
    return platform::makeFolder(mPath + '\\' + name);
}

bool OpenFolder::makeHardLink(const std::string& target, const std::string& name) const {
    return platform::makeHardLink(target, mPath + '\\' + name);
}

bool OpenFolder::makeSymbolicLink(const std::string& target, const std::string& name) const {
    // Granted to administrators and, from Windows 10 on, to everybody in developer mode.
    constexpr DWORD kAllowUnprivileged = 0x2;
    return CreateSymbolicLinkW(systemPath(mPath + '\\' + name).c_str(), systemPath(target).c_str(),
                               kAllowUnprivileged) != 0 ||
           failedByLastError();
}

bool OpenFolder::removeContents() const {
    bool removed = true;
    for (const FolderEntry& entry : entries().value_or(std::vector<FolderEntry>())) {
        const auto below = entry.isFolder ? folder(entry.name) : nullptr;
        removed = (entry.isFolder ? below != nullptr && below->removeAll()
                                  : removeFile(mPath + '\\' + entry.name)) &&
                  removed;
    }
    return removed;
}

bool OpenFolder::removeAll() {
    const bool isEmpty = removeContents();
    close();
    return removeEmptyFolder(mPath) && isEmpty;
}

bool canOthersReplaceIn(const std::string& /*folder*/) {
    return false;
}

} // namespace tarn::platform
