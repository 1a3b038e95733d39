#pragma once

#include <string>

namespace recordconverter {

/// The logging duties of the process: set-up, the engine's trace, the Qt messages. All operations
/// run on the thread that owns the application.
class ConverterLog {
public:
    virtual ~ConverterLog() = default;
    /// Sets up the log files and masks personal texts. Called once, before anything is logged.
    virtual void initialize(int argc, wchar_t** argv) = 0;
    /// Routes the trace of the engine in `engineFolder` (UTF-8) into the log. May be called again.
    virtual void attach(const std::string& engineFolder) = 0;
    virtual void installQtMessageHandler() = 0;
    /// Takes the engine's trace out of the log again. The run may end while a session that an
    /// engine still reports to keeps this object.
    virtual void detach() = 0;
};

} // namespace recordconverter
