#pragma once

#include <string>
#include <string_view>

/// Fails a test that leaves Error lines which it did not announce. A listener in every program that
/// links this checks when a test ends; FatalLogSink supplies the lines, and RecordingLogHook can.
namespace tarn::testing {

/// Error lines of the running test that begin so are expected. Before or after they are logged.
void expectErrorLine(std::string beginning);

/// Notes an Error line. Any thread.
void noteErrorLine(std::string_view message);

} // namespace tarn::testing
