#include "loader/LibraryLoader.h"

#include "loader/PathRules.h"
#include "log/LogCall.h"
#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/LibraryFile.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"

#include <algorithm>
#include <utility>
#include <vector>

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
    if (const auto open = platform::placeThatOthersCanChange(path)) {
        TARN_LOG(RootLoggerLevel::Warn, "Libraries in '" << path
                                                         << "' can be changed by other users, by '"
                                                         << *open << "'");
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

/// What the system would load along from the same folder is asked about, too. False when one of the
/// files cannot be opened.
bool addNeighbours(std::vector<platform::LibraryFile>& together, std::size_t of) {
    for (const std::wstring& path : together[of].neighbours()) {
        platform::LibraryFile file(path);
        if (!file.isOpen()) {
            return false;
        }
        if (std::ranges::none_of(together, [&](const auto& known) {
                return known.path().size() == file.path().size() &&
                       platform::startsWithIgnoringCase(known.path(), file.path());
            })) {
            together.push_back(std::move(file));
        }
    }
    return true;
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
    std::vector<platform::LibraryFile> together; // held up to the load
    if (!together.emplace_back(path).isOpen()) {
        return nullptr;
    }
    for (std::size_t next = 0; next < together.size(); ++next) {
        if (policy.refuses(together[next].path()) || policy.refuses(together[next].givenPath())) {
            TARN_LOG(RootLoggerLevel::Warn, "Refused to load "
                                                << platform::toUtf8(together[next].path())
                                                << ": no accepted signature");
            platform::refuseToLoad(platform::LoadRefusal::Policy);
            return nullptr;
        }
        if (policy.isSideLoadingProtectionEnabled() && !addNeighbours(together, next)) {
            return nullptr;
        }
    }
    return platform::loadWithAlteredSearchPath(together.front().path());
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
