#pragma once

#include <string>
#include <string_view>

namespace launcher {

/// The text of --help, 80 columns wide at most. `logFolder` is where the log goes.
std::string helpText(std::string_view logFolder);

std::string versionText();

} // namespace launcher
