#pragma once

#include "launcher/terminal/BatchPlan.h"
#include "launcher/terminal/TerminalConversion.h"

#include <functional>

namespace launcher {

/// Converts one after the other on the terminal and sums up: the worst status. One that fails does
/// not stop the rest, Ctrl-C does. `model` is the job without its files.
ExitStatus convertEach(const BatchPlan& plan, const Job& model, bool isForProgram,
                       TerminalRun& run);

} // namespace launcher
