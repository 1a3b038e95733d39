#include "client/ClientFolders.h"

#include "platform/KnownFolders.h"

#include <mutex>

namespace tarn::loader {
namespace {

// Everything static here is leaked: the logger's worker asks for folders while the process exits.
struct Override {
    std::mutex mutex;
    std::string folder;
};

Override& processOverride() {
    static Override& override = *new Override;
    return override;
}

} // namespace

std::string localApplicationDataFolder() {
    static const std::string& folder = *new std::string(platform::localApplicationDataFolder());
    return folder;
}

std::string launcherFolder() {
    return localApplicationDataFolder() + platform::pathSeparator() + "QuorellTarnLauncher";
}

std::string applicationFolder() {
    const std::string folder = applicationFolderOverride();
    return folder.empty() ? localApplicationDataFolder() + platform::pathSeparator() + "QuorellTarn"
                          : folder;
}

void setApplicationFolderOverride(const std::string& folder) {
    const std::lock_guard lock(processOverride().mutex);
    processOverride().folder = folder;
}

std::string applicationFolderOverride() {
    const std::lock_guard lock(processOverride().mutex);
    return processOverride().folder;
}

std::string dynamicDependenciesFolder() {
    static const std::string& folder =
        *new std::string(launcherFolder() + platform::pathSeparator() + "dynamic_dependencies");
    return folder;
}

} // namespace tarn::loader
