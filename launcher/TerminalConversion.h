#pragma once

#include "launcher/Preflight.h"
#include "recordconverter/ConverterLog.h"

#include <memory>

namespace launcher {

enum ExitStatus : int { Converted = 0, Failed = 1, NotStarted = 2, Stopped = 130 };

/// Converts on the terminal: progress on standard error, Ctrl-C stops. Returns when the engine has
/// ended and is unloaded. An engine that can not be stopped keeps its threads: the process then
/// ends here and now.
ExitStatus convertInTerminal(const Job& job,
                             const std::shared_ptr<recordconverter::ConverterLog>& converterLog);

} // namespace launcher
