#pragma once

/// The library's one export, called by the client's launcher on its main thread. `argv` holds
/// `argc` wide texts: 0 the caller's program, 1 the runtime folder, 2 not read, 3 the sources,
/// 4 the destination, 5 the theme, 2 for dark. Returns the event loop's result or -1, unless the
/// run ends the process first, with status 0. The library must stay loaded until the process ends:
/// its threads go on.
extern "C" RECORD_CONVERTER_EXPORT int TarnEntryPoint(int argc, wchar_t** argv);
