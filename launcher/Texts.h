#pragma once

#include <string>
#include <string_view>

namespace launcher {

/// Text from outside as a terminal may have it: what would drive it, forge a line or turn the
/// reading order round is written out (`\n`, `\x1b`, `\u202e`, `\xff` for what is not UTF-8).
std::string visible(std::string_view text);

/// The same in double quotes, for a path or an argument.
std::string inQuotes(std::string_view text);

} // namespace launcher
