#include "platform/Files.h"
#include "platform/windows/SystemError.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

namespace tarn::platform {
namespace {

/// A free name beside the target, so that the last step is a rename within one volume.
std::string temporaryBeside(const std::string& path) {
    const std::size_t separator = path.find_last_of("\\/");
    const std::string folder = path.substr(0, separator == std::string::npos ? 0 : separator + 1);
    return folder + ".rc-" + std::to_string(GetCurrentProcessId()) + '-' +
           std::to_string(GetCurrentThreadId());
}

bool isReadOnly(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

} // namespace

// CopyFileW alone has emptied an existing target by the time it fails.
bool copyFileContents(const std::string& from, const std::string& to) {
    const std::wstring source = systemPath(from);
    const std::wstring target = systemPath(to);
    if (isReadOnly(target)) { // whether a rename replaces such a file depends on the version
        SetLastError(ERROR_ACCESS_DENIED);
        return failedByLastError();
    }
    const std::wstring temporary = systemPath(temporaryBeside(to));
    if (CopyFileW(source.c_str(), temporary.c_str(), FALSE) != 0 &&
        MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING) != 0) {
        return true;
    }
    const DWORD error = GetLastError();
    SetFileAttributesW(temporary.c_str(), FILE_ATTRIBUTE_NORMAL); // a copied read-only flag
    DeleteFileW(temporary.c_str());
    SetLastError(error);
    return failedByLastError();
}

} // namespace tarn::platform
