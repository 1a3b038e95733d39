#pragma once

#include <string_view>

namespace tarn::platform {

enum class TerminalStream { Output, Error };

/// True when a person reads the stream on a screen, false for a file or a pipe.
bool isTerminal(TerminalStream stream);

/// Columns of the screen; 80 where that cannot be told.
int terminalWidth(TerminalStream stream);

/// Writes UTF-8 at once, unbuffered, also where a Windows console shows other code pages. What the
/// stream does not take is dropped: there is nowhere left to report it.
void writeTerminal(TerminalStream stream, std::string_view utf8);

} // namespace tarn::platform
