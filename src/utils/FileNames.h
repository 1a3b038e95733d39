#pragma once

#include <string>
#include <string_view>
#include <utility>

/// Rules of path and file names that need no file system.
namespace tarn::fileNames {

/// Each of \/:*?"<>| becomes '_'.
std::string sanitize(std::string_view name);

/// Stem and extension (dot included), split at the last '.'; all stem when that comes first.
std::pair<std::string, std::string> splitExtension(std::string_view name);

/// Removes every "_" with an identifier of 8-4-4-4-12 hexadecimal digits: the identifier may stand
/// in braces and be followed by up to two digits and a counter in parentheses.
std::string withoutIdentifiers(std::string_view name);

/// Up to and including the last '\' or '/', and what follows it.
std::string directoryOf(std::string_view path);
std::string nameOf(std::string_view path);

/// Whether the platform separates folders by this character (Windows takes '/' too).
bool isSeparator(char character);

/// "a/b//" gives "a/b"; a root keeps its separator.
std::string withoutTrailingSeparators(std::string_view path);

/// "a/b" gives "a"; empty when there is no parent to name.
std::string parentOf(std::string_view path);

std::string join(std::string_view folder, std::string_view name);

} // namespace tarn::fileNames
