#include "platform/PrivateFile.h"

#include "platform/OpenFolder.h"
#include "platform/windows/SystemError.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <bit>
#include <fcntl.h>
#include <io.h>
#include <utility>
#include <vector>

namespace tarn::platform {
namespace {

constexpr int kFileNamesTried = 100;

/// A stream on a copy of the handle.
std::FILE* streamOn(HANDLE file) {
    HANDLE copy = nullptr;
    HANDLE process = GetCurrentProcess();
    if (DuplicateHandle(process, file, process, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS) == 0) {
        return nullptr;
    }
    const int number = _open_osfhandle(std::bit_cast<std::intptr_t>(copy), _O_BINARY);
    return number < 0 ? nullptr : _fdopen(number, "wb");
}

} // namespace

// Deleting is shared with nobody: the handle that stays open is the mark.
std::unique_ptr<PrivateFile> PrivateFile::make(const std::string& beginning) {
    for (int tries = 0; tries < kFileNamesTried; ++tries) {
        const std::string path = unforeseeableName(beginning) + kEnding;
        HANDLE file = CreateFileW(systemPath(path).c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ,
                                  nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            failedByLastError();
            if (GetLastError() != ERROR_FILE_EXISTS) {
                break;
            }
            continue;
        }
        return std::unique_ptr<PrivateFile>(
            new PrivateFile(path, streamOn(file), std::bit_cast<std::intptr_t>(file)));
    }
    return nullptr;
}

PrivateFile::~PrivateFile() {
    close();
    if (!mPath.empty()) {
        CloseHandle(std::bit_cast<HANDLE>(mMark));
        DeleteFileW(systemPath(mPath).c_str());
    }
}

bool PrivateFile::close() {
    std::FILE* const stream = std::exchange(mStream, nullptr);
    const bool isGood = stream != nullptr && std::ferror(stream) == 0;
    return stream != nullptr && std::fclose(stream) == 0 && isGood;
}

/// By the handle, so that there is no moment without the mark.
bool PrivateFile::moveTo(const std::string& path, bool replaces) {
    const std::wstring target = systemPath(path);
    const std::size_t bytes = target.size() * sizeof(wchar_t);
    std::vector<std::uint64_t> memory((sizeof(FILE_RENAME_INFO) + bytes) / sizeof(std::uint64_t) +
                                      1);
    auto& information = *reinterpret_cast<FILE_RENAME_INFO*>(memory.data());
    information.ReplaceIfExists = replaces ? TRUE : FALSE;
    information.FileNameLength = static_cast<DWORD>(bytes);
    target.copy(information.FileName, target.size());
    if (SetFileInformationByHandle(std::bit_cast<HANDLE>(mMark), FileRenameInfo, &information,
                                   static_cast<DWORD>(sizeof(FILE_RENAME_INFO) + bytes)) == 0) {
        return failedByLastError();
    }
    mPath.clear();
    CloseHandle(std::bit_cast<HANDLE>(std::exchange(mMark, -1)));
    return true;
}

bool removeLeftoverFile(const std::string& path) {
    const std::wstring file = systemPath(path);
    const DWORD attributes = GetFileAttributesW(file.c_str());
    const bool isOrdinary =
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
    return isOrdinary && DeleteFileW(file.c_str()) != 0;
}

} // namespace tarn::platform
