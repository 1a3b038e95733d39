#pragma once

#include <filesystem>
#include <string>

namespace launcher {

/// UTF-8 as the standard's paths have it, and back.
std::filesystem::path fromText(const std::string& text);
std::string toText(const std::filesystem::path& path);

/// The path seen from the working folder, links kept as they are. UTF-8.
std::string absolutePath(const std::string& path);

/// The folder itself, seen through links, absolute and without a separator at its end. UTF-8.
std::string resolvedFolder(const std::string& path);

/// "<folder of the program>/../runtime", resolved; empty when the system does not tell where the
/// program lies.
std::string defaultEngineFolder();

} // namespace launcher
