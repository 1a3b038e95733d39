#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarn::platform {

// Folders are UTF-8, absolute and without a trailing separator; empty when the system has none.

/// FOLDERID_LocalAppData; on Linux $XDG_DATA_HOME when absolute, else $HOME/.local/share.
std::string localApplicationDataFolder();

/// FOLDERID_Profile; on Linux $HOME, else the home folder of the user database.
std::string profileFolder();

/// Where the system's own libraries lie, in search order: FOLDERID_System alone on Windows, the
/// dynamic loader's built-in folders on Linux (never LD_LIBRARY_PATH).
std::vector<std::string> systemLibraryFolders();

/// The folder for temporary files.
std::string temporaryFolder();

/// An environment variable's value as UTF-8; nothing when it is not set.
std::optional<std::string> environmentVariable(const char* name);

/// The value of HOMEPATH on Windows, of HOME on Linux; nothing when it is not set.
std::optional<std::string> homePath();

/// '\\' on Windows, '/' on Linux.
char pathSeparator();

/// True for a path that the separator rules of the platform call absolute (drive path or UNC on
/// Windows, leading '/' on Linux).
bool isAbsolutePath(const std::string& path);

} // namespace tarn::platform
