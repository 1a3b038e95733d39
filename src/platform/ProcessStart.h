#pragma once

namespace tarn::platform {

/// First of all that a program does. Takes standard input, output and errors into use where the
/// caller has closed them: a file that was opened later would have their number, and what is said
/// to the user would be written into it. A limit to the size of files becomes an error of the write
/// that meets it instead of the end of the program. Windows knows neither.
void prepareProcess();

} // namespace tarn::platform
