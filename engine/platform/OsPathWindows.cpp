#include "engine/platform/OsPath.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/ThreadDescription.h"
#include "platform/windows/SystemError.h"

#include <windows.h>

#include <cerrno>

namespace zelcore {

namespace {

using tarn::platform::nativePath;

int result(BOOL isDone) {
    if (isDone != 0) {
        return 0;
    }
    tarn::platform::failedByLastError();
    return errno;
}

/// Where the name begins: after the last separator, or after a drive's colon.
std::size_t nameStart(const std::string& path) {
    const auto separator = path.find_last_of("\\/");
    if (separator != std::string::npos) {
        return separator + 1;
    }
    return path.size() > 1 && path[1] == ':' ? 2 : 0;
}

} // namespace

int stateOf(const std::string& path, FileState& state) {
    OsFile file;
    const int error = OsFile::openForState(path, file);
    return error != 0 ? error : file.state(state);
}

bool isLink(const std::string& path) {
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(nativePath(path).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

bool isWriteProtected(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(nativePath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

std::string folderOf(const std::string& path) {
    const std::size_t start = nameStart(path);
    if (start == 0) {
        return ".";
    }
    const std::string folder = path.substr(0, start);
    if (folder.ends_with(':')) {
        return folder + "."; // that drive's current folder
    }
    const bool isRoot = folder.size() == 1 || (folder.size() == 3 && folder[1] == ':');
    return isRoot ? folder : folder.substr(0, start - 1);
}

std::string nameOf(const std::string& path) {
    return path.substr(nameStart(path));
}

std::string joinPath(const std::string& folder, const std::string& name) {
    return folder.ends_with('\\') || folder.ends_with('/') ? folder + name : folder + '\\' + name;
}

int replaceFile(const std::string& from, const std::string& to) {
    return result(MoveFileExW(nativePath(from).c_str(), nativePath(to).c_str(),
                              MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

int renameNew(const std::string& from, const std::string& to) {
    return result(
        MoveFileExW(nativePath(from).c_str(), nativePath(to).c_str(), MOVEFILE_WRITE_THROUGH));
}

int removeFile(const std::string& path) {
    return result(DeleteFileW(nativePath(path).c_str()));
}

int syncFolder(const std::string& /*folder*/) {
    return 0; // MOVEFILE_WRITE_THROUGH has done it
}

std::vector<std::string> namesIn(const std::string& folder, const std::string& prefix,
                                 const std::string& suffix) {
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(nativePath(joinPath(folder, "*")).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        std::string name = tarn::platform::toUtf8(found.cFileName);
        if (name.size() >= prefix.size() + suffix.size() && name.starts_with(prefix) &&
            name.ends_with(suffix)) {
            names.push_back(std::move(name));
        }
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
    return names;
}

std::uint32_t currentProcessId() {
    return GetCurrentProcessId();
}

bool isMemoryLeft(std::size_t size) {
    void* memory = VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    return memory != nullptr && VirtualFree(memory, 0, MEM_RELEASE) != 0;
}

void prepareEngineThread(const char* name) {
    tarn::platform::setThreadDescription(name);
}

// Whatever way a process ends itself there, its libraries are told, and run their destructors.
void callAtQuickExit(void (* /*call*/)()) {
}

void pinThisLibrary() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&pinThisLibrary), &module);
}

} // namespace zelcore
