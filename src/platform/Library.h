#pragma once

#include <cstdint>
#include <string>

namespace tarn::platform {

/// An `HMODULE` on Windows, what `dlopen` returned on Linux; null for none.
using LibraryHandle = void*;

/// Loads the library at a full path; what it depends on is searched in its own folder first
/// (`LoadLibraryExW` with LOAD_WITH_ALTERED_SEARCH_PATH; on Linux a library says the same of
/// itself with RPATH=$ORIGIN, which goes before LD_LIBRARY_PATH). Null on failure, see lastError().
LibraryHandle loadWithAlteredSearchPath(const std::wstring& path);

/// Loads the library at a full path under the system folder, dependencies from the system folders
/// only (`LoadLibraryExW` with LOAD_LIBRARY_SEARCH_SYSTEM32). Null on failure, see lastError().
LibraryHandle loadWithSystemSearchPath(const std::wstring& path);

/// Address of an export, null when the library has none of that name.
void* findSymbol(LibraryHandle library, const char* name);

/// False on failure, see lastError().
bool unload(LibraryHandle library);

/// Adds a folder to those searched for the dependencies of libraries loaded later
/// (`AddDllDirectory`), which from then on are neither the working folder nor those of PATH
/// (`SetDefaultDllDirectories`). Linux has no such process-wide list: libraries carry their own
/// RPATH and nothing is added. False on failure.
bool addLibraryFolder(const std::wstring& folder);

/// Keeps the library or program that this code is linked into in memory until the process ends,
/// whoever unloads it.
void pinThisModule();

/// The calling thread's code of the last failure in this header: `GetLastError` on Windows,
/// an `errno` value on Linux.
std::uint32_t lastError();

/// Why the calling thread's last load failed, in the system's words, UTF-8 and without a full stop.
/// Call it right after the failure.
std::string loadFailureText();

enum class LoadRefusal { NoFullPath, Policy };
/// Makes lastError() and loadFailureText() tell of a library that was not even tried.
void refuseToLoad(LoadRefusal reason);

/// Takes the working folder and PATH out of the search for libraries, in this process from here on.
/// Linux never searches there.
void useDefaultLibraryFolders();

/// "mediaconverter" gives "mediaconverter.dll" or "libmediaconverter.so".
std::string libraryFileName(const std::string& baseName);

} // namespace tarn::platform
