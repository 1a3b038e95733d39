#include "platform/KnownFolders.h"

#include "platform/Text.h"

#include <windows.h>

#include <cerrno>
#include <cstdlib>
#include <shlobj.h>

namespace tarn::platform {
namespace {

/// The root of a drive keeps its separator, without which it would name a working folder.
std::string withoutTrailingSeparators(std::string folder) {
    while (folder.size() > 3 && (folder.back() == '\\' || folder.back() == '/')) {
        folder.pop_back();
    }
    return folder;
}

std::string knownFolder(const KNOWNFOLDERID& id) {
    PWSTR path = nullptr;
    const HRESULT result = SHGetKnownFolderPath(id, 0, nullptr, &path);
    std::string folder;
    if (SUCCEEDED(result) && path != nullptr) {
        folder = withoutTrailingSeparators(toUtf8(path));
    }
    CoTaskMemFree(path); // to be freed whatever the result
    return folder;
}

} // namespace

std::string localApplicationDataFolder() {
    return knownFolder(FOLDERID_LocalAppData);
}

std::string profileFolder() {
    return knownFolder(FOLDERID_Profile);
}

std::vector<std::string> systemLibraryFolders() {
    std::string folder = knownFolder(FOLDERID_System);
    return folder.empty() ? std::vector<std::string>() : std::vector{std::move(folder)};
}

std::string temporaryFolder() {
    std::wstring path(MAX_PATH + 1, L'\0'); // no longer one is ever returned
    path.resize(GetTempPathW(static_cast<DWORD>(path.size()), path.data()));
    return withoutTrailingSeparators(toUtf8(path));
}

std::optional<std::string> environmentVariable(const char* name) {
    const std::wstring wideName = toWide(name);
    // The size counts the NUL and is 0 for a variable that is not set. Asking for it alone succeeds
    // on Windows and is ERANGE under Wine.
    std::size_t size = 0;
    const int error = _wgetenv_s(&size, nullptr, 0, wideName.c_str());
    if ((error != 0 && error != ERANGE) || size == 0) {
        return std::nullopt;
    }
    std::wstring value(size, L'\0');
    if (_wgetenv_s(&size, value.data(), value.size(), wideName.c_str()) != 0 || size == 0) {
        return std::nullopt;
    }
    value.resize(size - 1);
    return toUtf8(value);
}

std::optional<std::string> homePath() {
    return environmentVariable("HOMEPATH");
}

char pathSeparator() {
    return '\\';
}

bool isAbsolutePath(const std::string& path) {
    const auto isSeparator = [](char character) { return character == '\\' || character == '/'; };
    const auto isLetter = [](char character) {
        return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
    };
    const bool onDrive =
        path.size() >= 3 && isLetter(path[0]) && path[1] == ':' && isSeparator(path[2]);
    const bool onServer = path.size() >= 3 && isSeparator(path[0]) && isSeparator(path[1]);
    return onDrive || onServer;
}

} // namespace tarn::platform
