#pragma once

#include "engine/platform/OsFile.h"

#include <cstdint>
#include <string>
#include <vector>

/// The few calls on names and on the process in which systems differ. Paths are UTF-8, failures are
/// errno values.
namespace zelcore {

/// Follows links. 0, or ENOENT when nothing is there, or another errno value.
int stateOf(const std::string& path, FileState& state);

/// A link that another path stands behind, whether that exists or not.
bool isLink(const std::string& path);
/// A file that its owner or the system keeps from being changed.
bool isWriteProtected(const std::string& path);

/// Folder part without the last separator, "." for a bare name, a root as it is.
std::string folderOf(const std::string& path);
std::string nameOf(const std::string& path);
std::string joinPath(const std::string& folder, const std::string& name);

/// Renames over whatever has the target's name, in one step.
int replaceFile(const std::string& from, const std::string& to);
/// Renames in one step, or leaves both alone and returns EEXIST when something has the target's
/// name.
int renameNew(const std::string& from, const std::string& to);
int removeFile(const std::string& path);
/// Makes a rename in the folder permanent; nothing to do where the rename itself is.
int syncFolder(const std::string& folder);
/// Names in a folder that begin and end so.
std::vector<std::string> namesIn(const std::string& folder, const std::string& prefix,
                                 const std::string& suffix);

std::uint32_t currentProcessId();
/// Whether the system has a piece of memory of that size left.
bool isMemoryLeft(std::size_t size);
/// Names the calling thread for debuggers, and keeps the program's signals away from it.
void prepareEngineThread(const char* name);
/// For an end by quick_exit, which runs no destructors. Windows runs them then, too: nothing to do.
void callAtQuickExit(void (*call)());
/// Keeps this library in memory until the process ends. Safe while it is being loaded.
void pinThisLibrary();

} // namespace zelcore
