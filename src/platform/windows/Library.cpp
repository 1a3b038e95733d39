#include "platform/Library.h"

#include "platform/windows/SystemPath.h"

#include <windows.h>

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

std::string libraryFileName(const std::string& baseName) {
    return baseName + ".dll";
}

} // namespace tarn::platform
