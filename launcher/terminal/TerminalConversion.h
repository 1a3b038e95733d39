#pragma once

#include "launcher/Outcome.h"
#include "launcher/Preflight.h"
#include "launcher/terminal/EngineComplaint.h"
#include "launcher/terminal/Narrator.h"
#include "recordconverter/ConverterLog.h"

#include <memory>

namespace launcher {

/// What the conversions of one run on the terminal share.
struct TerminalRun {
    /// Registers the complaint with the root logger.
    TerminalRun(std::shared_ptr<recordconverter::ConverterLog> log, Narrator& teller);

    std::shared_ptr<recordconverter::ConverterLog> converterLog;
    std::shared_ptr<EngineComplaint> complaint;
    Narrator& narrator;
    bool isEngineQuiet =
        true; ///< false: threads of an engine that cannot be stopped may still call
};

/// Converts and tells so; Ctrl-C stops. Returns when the engine has ended and is unloaded. An
/// engine that cannot be stopped keeps its threads and the session they call.
Outcome convertInTerminal(const Job& job, TerminalRun& run);

/// Returns the status, or ends the process with it here and now when the engine is not quiet.
ExitStatus leaveTerminal(TerminalRun& run, ExitStatus status);

} // namespace launcher
