#include "platform/KnownFolders.h"

#include "platform/Files.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

/// The root folder stays "/".
std::string withoutTrailingSeparators(std::string folder) {
    while (folder.size() > 1 && folder.back() == '/') {
        folder.pop_back();
    }
    return folder;
}

std::string absoluteFolderFromEnvironment(const char* name) {
    const auto value = environmentVariable(name);
    return value && isAbsolutePath(*value) ? withoutTrailingSeparators(*value) : std::string();
}

std::string homeFolderOfUserDatabase() {
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr || !isAbsolutePath(found->pw_dir)) {
        return {};
    }
    return withoutTrailingSeparators(found->pw_dir);
}

} // namespace

std::string localApplicationDataFolder() {
    // XDG base directories 0.8: relative values are ignored.
    if (auto folder = absoluteFolderFromEnvironment("XDG_DATA_HOME"); !folder.empty()) {
        return folder;
    }
    const std::string home = profileFolder();
    return home.empty() ? home : (home == "/" ? "" : home) + "/.local/share";
}

std::string profileFolder() {
    auto folder = absoluteFolderFromEnvironment("HOME");
    return folder.empty() ? homeFolderOfUserDatabase() : folder;
}

std::vector<std::string> systemLibraryFolders() {
    // The order of the dynamic loader's built-in list. dlinfo() could list folders too, but mixes
    // those of LD_LIBRARY_PATH in without a mark.
    std::vector<std::string> folders;
    for (const char* folder : {"/lib/" RECORD_CONVERTER_LIBRARY_ARCHITECTURE,
                               "/usr/lib/" RECORD_CONVERTER_LIBRARY_ARCHITECTURE, "/lib64",
                               "/usr/lib64", "/lib", "/usr/lib"}) {
        if (const auto details = fileDetails(folder); details && details->isFolder) {
            folders.push_back(withoutTrailingSeparators(folder));
        }
    }
    return folders;
}

std::string temporaryFolder() {
    auto folder = absoluteFolderFromEnvironment("TMPDIR");
    return folder.empty() ? "/tmp" : folder;
}

std::optional<std::string> environmentVariable(const char* name) {
    // Nothing here writes the environment while other threads run.
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> homePath() {
    return environmentVariable("HOME");
}

char pathSeparator() {
    return '/';
}

bool isAbsolutePath(const std::string& path) {
    return path.starts_with('/');
}

} // namespace tarn::platform
