#pragma once

#include "loader/SideLoadingPolicy.h"
#include "platform/Library.h"

#include <string>

/// Loading of libraries at run time under the side-loading policy. Nothing throws; null is failure,
/// and the calling thread's platform::lastError() tells why.
namespace tarn::loader {

using platform::LibraryHandle;

/// Loads `fileName` (a bare name) from `folder` (absolute, without a trailing separator), else from
/// the system folder, and logs what it found and did. Nothing is loaded from another kind of
/// folder.
LibraryHandle loadLibrary(const wchar_t* fileName, const std::wstring& folder,
                          const SideLoadingPolicy& policy = SideLoadingPolicy::ofProcess());

/// Loads a full path unless the policy refuses the file.
LibraryHandle safeLoadLibrary(const std::wstring& path,
                              const SideLoadingPolicy& policy = SideLoadingPolicy::ofProcess());

/// Loads a bare name from the system folder only.
LibraryHandle loadSystemLibrary(const std::wstring& fileName);

} // namespace tarn::loader
