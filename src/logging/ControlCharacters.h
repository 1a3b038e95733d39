#pragma once

#include <string>

namespace tarn {

/// Writes out what a message from outside must not carry into a log raw, so that no text can pass
/// for the beginning of another line or drive a terminal: control characters except the tab (`\n`,
/// `\r`, `\x1b`, `\u0085`), Unicode's line and paragraph separators (`\u2028`) and bytes that are
/// not UTF-8 (`\xff`). Ordinary text, backslashes included, stays as it is.
void escapeControlCharacters(std::string& text);

} // namespace tarn
