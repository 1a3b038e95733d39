#include "platform/Library.h"

#include "platform/Text.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <array>
#include <bit>

namespace tarn::platform {
namespace {

LibraryHandle load(const std::wstring& path, DWORD flags) {
    const std::wstring file = systemPath(path);
    if (file.empty()) {
        SetLastError(ERROR_INVALID_NAME);
        return nullptr;
    }
    return LoadLibraryExW(file.c_str(), nullptr, flags);
}

} // namespace

LibraryHandle loadWithAlteredSearchPath(const std::wstring& path) {
    return load(path, LOAD_WITH_ALTERED_SEARCH_PATH);
}

LibraryHandle loadWithSystemSearchPath(const std::wstring& path) {
    return load(path, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

void* findSymbol(LibraryHandle library, const char* name) {
    // A null handle would mean the running program.
    if (library == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return std::bit_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

bool unload(LibraryHandle library) {
    return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}

bool addLibraryFolder(const std::wstring& folder) {
    // Without the second call only LoadLibraryEx with a flag that Qt does not give looks there: the
    // libraries that a plugin needs would be looked for in the working folder and in PATH instead.
    return AddDllDirectory(folder.c_str()) != nullptr &&
           SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS) != 0;
}

void pinThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&pinThisModule), &module);
}

std::uint32_t lastError() {
    return GetLastError();
}

std::string loadFailureText() {
    const DWORD error = GetLastError();
    if (error == ERROR_ACCESS_DISABLED_BY_POLICY) {
        return "the side-loading policy refuses it";
    }
    std::array<wchar_t, 512> text{};
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        nullptr, error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::wstring_view words(text.data(), length);
    while (words.ends_with(L' ') || words.ends_with(L'.')) {
        words.remove_suffix(1);
    }
    return words.empty() ? "error " + std::to_string(error) : toUtf8(words);
}

void refuseToLoad(LoadRefusal reason) {
    SetLastError(reason == LoadRefusal::Policy ? ERROR_ACCESS_DISABLED_BY_POLICY
                                               : ERROR_BAD_PATHNAME);
}

void useDefaultLibraryFolders() {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

std::string libraryFileName(const std::string& baseName) {
    return baseName + ".dll";
}

} // namespace tarn::platform
