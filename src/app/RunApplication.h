#pragma once

namespace recordconverter::app {

struct EntryContext;

/// A whole run on the calling thread, which becomes the GUI thread: log set-up, Qt, window,
/// conversion, event loop, tear-down. Returns the event loop's result, or -1 when the window cannot
/// be loaded or an exception escapes. Does not return when the user closes the toast or its time is
/// up: those end the process.
int runApplication(EntryContext& context, int argc, wchar_t** argv) noexcept;

} // namespace recordconverter::app
