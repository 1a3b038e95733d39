#pragma once

#include "platform/Files.h"

#include <ctime>
#include <string>

namespace tarn::platform {

/// Of 100 ns.
std::int64_t inUnits(const timespec& time);

/// Closes a descriptor, which may be -1, and leaves errno as it was.
void closeQuietly(int file);

/// `file` when it is an ordinary one; else closes it and gives -1.
int onlyOrdinary(int file);

/// Takes the lock of a descriptor without waiting.
bool lockWithoutWaiting(int file);

/// Whether a descriptor's file or folder is this user's own.
bool isOwn(int file);

/// Copies an ordinary file to a new one in an open folder, for the owner alone.
bool copyContentsInto(const std::string& from, int folder, const char* name);

/// Of an open folder, whose descriptor it takes over.
std::optional<std::vector<FolderEntry>> entriesOf(int folder, std::string_view pattern);

} // namespace tarn::platform
