#pragma once

#include <string>
#include <string_view>

namespace launcher {

/// A path or argument for a sentence on the terminal: in double quotes, control characters and
/// invalid bytes as '?', so that it can neither move the cursor nor forge a line.
std::string inQuotes(std::string_view text);

/// The text of --help. `logFolder` is where the log goes.
std::string helpText(std::string_view logFolder);

std::string versionText();

} // namespace launcher
