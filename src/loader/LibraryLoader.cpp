#include "loader/LibraryLoader.h"

#include "loader/PathRules.h"
#include "logging/LogCall.h"
#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"

namespace tarn::loader {
namespace {

std::wstring joined(const std::wstring& folder, const std::wstring& name) {
    return folder + static_cast<wchar_t>(platform::pathSeparator()) + name;
}

/// The drive path rule holds where there are drives.
bool isSystemPath(const std::wstring& path) {
    return platform::pathSeparator() == '\\' ? isAbsoluteDrivePath(path)
                                             : platform::isAbsolutePath(platform::toUtf8(path));
}

/// A relative folder would mean the working folder, which is anybody's; an empty one the root.
bool mayLoadFrom(const std::wstring& folder, const std::wstring& fileName) {
    return isBareName(fileName) && platform::isAbsolutePath(platform::toUtf8(folder));
}

void logFound(const std::string& name, const std::wstring& path) {
    const FileUtils files;
    const std::string utf8Path = platform::toUtf8(path);
    const bool exists = !path.empty() && files.exists(utf8Path);
    const std::int64_t size = files.getFileSize(utf8Path);
    TARN_LOG(RootLoggerLevel::Debug,
             "Load " << name << ", exists: " << (exists ? "true" : "false") << ", size: " << size);
}

void warnOfOpenFolder(const std::wstring& folder) {
    const std::string path = platform::toUtf8(folder);
    if (platform::canOthersWrite(path)) {
        TARN_LOG(RootLoggerLevel::Warn,
                 "Libraries in '" << path << "' can be changed by other users");
    }
}

LibraryHandle load(const std::wstring& fileName, const std::wstring& folder,
                   const SideLoadingPolicy& policy) {
    const std::string name = platform::toUtf8(fileName);
    const bool allowed = mayLoadFrom(folder, fileName);
    const std::wstring path = allowed ? joined(folder, fileName) : std::wstring();
    logFound(name, path);
    if (!allowed) {
        TARN_LOG(RootLoggerLevel::Warn, "Refused to load " << name << " from '"
                                                           << platform::toUtf8(folder)
                                                           << "': not an absolute folder");
    } else if (LibraryHandle library = safeLoadLibrary(path, policy)) {
        warnOfOpenFolder(folder);
        TARN_LOG(RootLoggerLevel::Debug, "Loaded " << name << " with altered paths");
        return library;
    }
    LibraryHandle library = loadSystemLibrary(fileName);
    const std::uint32_t error = platform::lastError();
    if (library == nullptr) {
        TARN_LOG(RootLoggerLevel::Error, "Failed to load " << name << ", errorCode: " << error);
    } else {
        TARN_LOG(RootLoggerLevel::Debug, "Loaded " << name);
    }
    return library;
}

} // namespace

LibraryHandle loadLibrary(const wchar_t* fileName, const std::wstring& folder,
                          const SideLoadingPolicy& policy) {
    try {
        return load(fileName != nullptr ? fileName : L"", folder, policy);
    } catch (const std::exception& exception) {
        TARN_LOG(RootLoggerLevel::Error, "Failed to load a library: " << exception.what());
        return nullptr;
    }
}

LibraryHandle safeLoadLibrary(const std::wstring& path, const SideLoadingPolicy& policy) {
    if (!platform::isAbsolutePath(platform::toUtf8(path))) {
        platform::refuseToLoad(platform::LoadRefusal::NoFullPath);
        return nullptr;
    }
    if (policy.refuses(path)) {
        platform::refuseToLoad(platform::LoadRefusal::Policy);
        return nullptr;
    }
    return platform::loadWithAlteredSearchPath(path);
}

LibraryHandle loadSystemLibrary(const std::wstring& fileName) {
    if (!isBareName(fileName)) {
        platform::refuseToLoad(platform::LoadRefusal::NoFullPath);
        return nullptr;
    }
    std::wstring path;
    for (const std::string& folder : platform::systemLibraryFolders()) {
        path = joined(platform::toWide(folder), fileName);
        if (FileUtils().exists(platform::toUtf8(path))) {
            break;
        }
    }
    return isSystemPath(path) ? platform::loadWithSystemSearchPath(path) : nullptr;
}

} // namespace tarn::loader
