#pragma once

#include <string>

/// The client's folders of the current user: UTF-8, with the platform's separator and without a
/// trailing one. Any thread.
namespace tarn::loader {

/// Asked of the system once per process.
std::string localApplicationDataFolder();

/// Where the client's launcher lives, under the local application data folder.
std::string launcherFolder();

/// The client's data, under the local application data folder; the override when there is one.
std::string applicationFolder();

/// Replaces the application folder for the whole process; an empty text takes that back.
void setApplicationFolderOverride(const std::string& folder);
std::string applicationFolderOverride();

/// Libraries and translations that the client fetches for itself, under the launcher folder.
std::string dynamicDependenciesFolder();

} // namespace tarn::loader
